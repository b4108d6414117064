#pragma once

#include <vector>

#include "include/cef_browser.h"
#include "include/wrapper/cef_message_router.h"

namespace zantrio {

struct QueryHandlerContext;

// The browser-side message routers, one per bridge, in the order of the bridges' names. Each
// dispatches the page's queries to the bridge's handler (CQueryHandlerBase::OnQuery). Thread: UI.
class BridgeRouters {
 public:
  // Creates a router for every registered handler and hands the handler the context. A bridge
  // without a handler or router is logged and stays unconnected.
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
  std::vector<CefRefPtr<CefMessageRouterBrowserSide>> routers_;
};

}  // namespace zantrio
