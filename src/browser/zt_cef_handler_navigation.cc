// The calls between ZtCefHandler and the web application: ready, exit, files, routes.
#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "bridge/app_lifecycle_events_handler.h"
#include "bridge/drag_handler.h"
#include "bridge/query_handler_registry.h"
#include "browser/initial_files_container.h"
#include "browser/zt_cef_handler.h"
#include "include/cef_frame.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {

void ZtCefHandler::onStartup() {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "onStartup";
  guarded(kOperation, [&] {
    logInformation("onStartup called! App loaded");
    reachability_->stop();
    forEachHandlerData<IAppLifecycleEventsHandler>(
        IQueryHandler::kAppLifecycleEventsHandler, [&](IAppLifecycleEventsHandler& handler) {
          guarded(kOperation, [&handler] { handler.appStarted(); });
        });
    const CInitialFilesContainer& initial = CInitialFilesContainer::instance();
    if (!initial.files().empty()) {
      logInformation("Initial files container has ", initial.files().size(), " files in it!");
      filesDropped(initial.files(), initial.complete(), initial.defer());
    }
    started_ = true;
  });
}

void ZtCefHandler::onShutdown() {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "onShutdown";
  guarded(kOperation, [&] {
    logInformation(kOperation, ": Shutdown was initiated by the app!");
    CloseAllBrowsers(false);
  });
}

void ZtCefHandler::filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "filesDropped";
  guarded(kOperation, [&] {
    forEachHandlerData<IDragHandler>(IQueryHandler::kDragHandler, [&](IDragHandler& handler) {
      handler.filesDropped(paths, complete, defer);
    });
  });
}

void ZtCefHandler::openFiles(const std::vector<std::string>& paths) {
  CEF_REQUIRE_UI_THREAD();
  guarded("openFiles", [&] {
    if (!paths.empty()) {
      if (started_) {
        filesDropped(paths, true, false);
      } else {
        CInitialFilesContainer::instance().append(paths);
      }
    }
    if (!browsers_.empty()) {
      browsers_.front()->GetHost()->SetFocus(true);
    }
  });
}

void ZtCefHandler::navigateToAddress(const std::string& address) {
  CEF_REQUIRE_UI_THREAD();
  guarded("navigateToAddress", [&] {
    if (browsers_.empty()) {
      logError("Failed to navigate to requested URL, since there are no active browsers!");
      return;
    }
    const CefRefPtr<CefFrame> frame = browsers_.front()->GetMainFrame();
    if (!frame) {
      logError("Failed to navigate to reuqsted URL, since there is no active frame!");
      return;
    }
    logInformation("Navigating to address ", address);
    frame->ExecuteJavaScript("Backbone.history.navigate('" + address + "', { trigger: true });",
                             frame->GetURL(), 0);
  });
}

void ZtCefHandler::newMessage() {
  navigateToAddress("/message/new");
}

void ZtCefHandler::newShare() {
  navigateToAddress("/share/new");
}

}  // namespace zantrio
