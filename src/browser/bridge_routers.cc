#include "browser/bridge_routers.h"

#include <string>
#include <utility>

#include "app/log/logger.h"
#include "bridge/bridge_names.h"
#include "bridge/query_handler_context.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {
namespace {

constexpr const char* kConnecting = "OnAfterCreated";

CefRefPtr<CefMessageRouterBrowserSide> createRouter(const std::string& bridge) {
  CefMessageRouterConfig config;
  config.js_query_function = bridge;
  return CefMessageRouterBrowserSide::Create(config);
}

}  // namespace

void BridgeRouters::connect(const QueryHandlerContext& context) {
  CEF_REQUIRE_UI_THREAD();
  QueryHandlerRegistry::Entries entries = QueryHandlerRegistry::instance().entries();
  for (auto& [name, handler] : entries) {
    if (handler.isNull()) {
      logError(kConnecting, ": handler for object ", name, " is NULL!");
      continue;
    }
    const auto router = createRouter(name);
    if (!router) {
      logError(kConnecting, ": Failed to create router for object ", name);
      continue;
    }
    router->AddHandler(handler.get(), false);
    handler->setHandlerData(context);
    routers_.push_back(router);
  }
  refuseQueriesOfMissing(entries);
}

// A router without a handler answers every query as cancelled.
void BridgeRouters::refuseQueriesOfMissing(const QueryHandlerRegistry::Entries& entries) {
  for (const char* const name : bridge_names::kAll) {
    const auto router = entries.contains(name) ? nullptr : createRouter(name);
    if (router) {
      routers_.push_back(router);
    }
  }
}

bool BridgeRouters::onProcessMessageReceived(const CefRefPtr<CefBrowser>& browser,
                                             const CefRefPtr<CefFrame>& frame, CefProcessId source,
                                             const CefRefPtr<CefProcessMessage>& message) const {
  // A copy: a method may run a nested event loop in which the routers are closed.
  const auto routers = routers_;
  bool handled = false;
  for (const auto& router : routers) {
    handled = router->OnProcessMessageReceived(browser, frame, source, message) || handled;
  }
  return handled;
}

void BridgeRouters::onBeforeBrowse(const CefRefPtr<CefBrowser>& browser,
                                   const CefRefPtr<CefFrame>& frame) const {
  for (const auto& router : routers_) {
    router->OnBeforeBrowse(browser, frame);
  }
}

void BridgeRouters::onRenderProcessTerminated(const CefRefPtr<CefBrowser>& browser) const {
  for (const auto& router : routers_) {
    router->OnRenderProcessTerminated(browser);
  }
}

void BridgeRouters::close(const CefRefPtr<CefBrowser>& browser) {
  CEF_REQUIRE_UI_THREAD();
  const auto routers = std::exchange(routers_, {});
  for (const auto& router : routers) {
    router->OnBeforeClose(browser);
  }
}

}  // namespace zantrio
