#pragma once

#include <vector>

#include "bridge/query_handler_registry.h"
#include "include/cef_browser.h"
#include "include/wrapper/cef_message_router.h"

namespace zantrio {

struct QueryHandlerContext;

// The browser-side message routers, one per bridge, in the order of the bridges' names. Each
// dispatches the page's queries to the bridge's handler (CQueryHandlerBase::OnQuery). Thread: UI.
class BridgeRouters {
 public:
  // Creates a router for every registered handler and hands the handler the context. A null handler
  // or a router that cannot be created is logged and leaves its bridge unconnected. The queries of
  // bridges that are not registered are cancelled.
  void connect(const QueryHandlerContext& context);

  // Passes the message to every router, even after one has handled it; true when one did.
  bool onProcessMessageReceived(const CefRefPtr<CefBrowser>& browser,
                                const CefRefPtr<CefFrame>& frame, CefProcessId source,
                                const CefRefPtr<CefProcessMessage>& message) const;
  void onBeforeBrowse(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame) const;
  void onRenderProcessTerminated(const CefRefPtr<CefBrowser>& browser) const;
  // Notifies every router and releases them all.
  void close(const CefRefPtr<CefBrowser>& browser);

 private:
  void refuseQueriesOfMissing(const QueryHandlerRegistry::Entries& entries);

  std::vector<CefRefPtr<CefMessageRouterBrowserSide>> routers_;
};

}  // namespace zantrio
