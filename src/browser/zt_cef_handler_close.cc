// The close protocol of ZtCefHandler.
#include <Poco/Clock.h>
#include <Poco/Util/TimerTaskAdapter.h>

#include <algorithm>

#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "bridge/app_lifecycle_events_handler.h"
#include "bridge/query_handler_registry.h"
#include "browser/zt_cef_handler.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/cef_app.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {

void ZtCefHandler::CloseAllBrowsers(bool forceClose) {
  guarded("CloseAllBrowsers", [&] {
    logInformation("Closing all browsers!");
    if (!CefCurrentlyOn(TID_UI)) {
      CefPostTask(TID_UI, base::BindOnce(&ZtCefHandler::CloseAllBrowsers,
                                         CefRefPtr<ZtCefHandler>(this), forceClose));
      return;
    }
    // A copy: CloseBrowser may remove a browser from the list before it returns.
    const auto browsers = browsers_;
    for (const CefRefPtr<CefBrowser>& browser : browsers) {
      browser->GetHost()->CloseBrowser(forceClose);
    }
  });
}

bool ZtCefHandler::DoClose(CefRefPtr<CefBrowser> browser) {
  CEF_REQUIRE_UI_THREAD();
  guarded("DoClose", [&] {
    logInformation("Close proces initiated!");
    if (browser->IsPopup()) {
      return;
    }
    if (browsers_.size() == 1) {
      closing_ = true;
    }
    closeTask_ = new Poco::Util::TimerTaskAdapter<ZtCefHandler>(*this, &ZtCefHandler::watchClose);
    Poco::Clock due;
    due += closePeriod_.totalMicroseconds();
    closeTimer_.schedule(closeTask_, due);
  });
  return false;
}

void ZtCefHandler::OnBeforeClose(CefRefPtr<CefBrowser> browser) {
  CEF_REQUIRE_UI_THREAD();
  constexpr const char* kOperation = "OnBeforeClose";
  // The framework may release its client when the last browser ends.
  const CefRefPtr<ZtCefHandler> self(this);
  guarded(kOperation, [&] {
    logInformation(kOperation, ": Shutting down!");
    if (browser->IsPopup()) {
      return;
    }
    // Each step has its own guard, so that a failure does not keep the application from ending.
    guarded(kOperation, [this] { cancelCloseTask(); });
    if (renderHandler_) {
      renderHandler_->OnBeforeClose(browser);
    }
    guarded(kOperation, [this] { notifyAppShutdown(); });
    guarded(kOperation, [&] { routers_.close(browser); });
    guarded(kOperation, [] { QueryHandlerRegistry::instance().clear(); });
    guarded(kOperation, [this] { relays_.clear(); });
    reachability_->stop();
    removeBrowser(browser);
    if (browsers_.empty()) {
      CefQuitMessageLoop();
    }
  });
}

void ZtCefHandler::notifyAppShutdown() {
  forEachHandlerData<IAppLifecycleEventsHandler>(
      IQueryHandler::kAppLifecycleEventsHandler, [](IAppLifecycleEventsHandler& handler) {
        guarded("OnBeforeClose", [&handler] { handler.appExiting(); });
      });
}

void ZtCefHandler::onCloseTask() {
  guarded("onCloseTask", [this] {
    if (!hasBrowsers_) {
      return;
    }
    logWarning(
        "ZtCefHandler::OnBeforeClose has not been called within the expected period, calling it "
        "manually!");
    // Not bound to this object: its destruction may have begun on the UI thread, and a new
    // reference would not stop it.
    CefPostTask(TID_UI, base::BindOnce(&ZtCefHandler::finishOverdueClose));
  });
}

void ZtCefHandler::watchClose(Poco::Util::TimerTask& /*task*/) {
  onCloseTask();
}

void ZtCefHandler::finishOverdueClose() {
  CEF_REQUIRE_UI_THREAD();
  ZtCefHandler* const handler = instance();
  if (handler != nullptr && !handler->browsers_.empty()) {
    handler->OnBeforeClose(handler->browsers_.front());
  }
}

void ZtCefHandler::cancelCloseTask() {
  if (!closeTask_.isNull()) {
    closeTask_->cancel();
  }
}

void ZtCefHandler::addBrowser(const CefRefPtr<CefBrowser>& browser) {
  browsers_.push_back(browser);
  hasBrowsers_ = true;
}

void ZtCefHandler::removeBrowser(const CefRefPtr<CefBrowser>& browser) {
  const auto closed = std::find_if(browsers_.begin(), browsers_.end(), [&](const auto& candidate) {
    return candidate->IsSame(browser);
  });
  if (closed != browsers_.end()) {
    browsers_.erase(closed);
  }
  hasBrowsers_ = !browsers_.empty();
}

}  // namespace zantrio
