#pragma once

#include <vector>

#include "include/cef_browser.h"
#include "include/wrapper/cef_message_router.h"

namespace zantrio {

struct QueryHandlerContext;

// The browser-side message routers, one for each bridge, in the order of the bridges' names.
// Thread: UI.
class BridgeRouters {
 public:
  // Makes a router for every registered handler and hands the handler the context. A bridge
  // without a handler or router is logged and left unconnected.
  void connect(const QueryHandlerContext& context);

  // Asks every router, also after one has handled the message; true when one did.
  bool onProcessMessageReceived(const CefRefPtr<CefBrowser>& browser,
                                const CefRefPtr<CefFrame>& frame, CefProcessId source,
                                const CefRefPtr<CefProcessMessage>& message) const;
  void onBeforeBrowse(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame) const;
  void onRenderProcessTerminated(const CefRefPtr<CefBrowser>& browser) const;
  // Tells every router and releases them all.
  void close(const CefRefPtr<CefBrowser>& browser);

 private:
  std::vector<CefRefPtr<CefMessageRouterBrowserSide>> routers_;
};

}  // namespace zantrio
