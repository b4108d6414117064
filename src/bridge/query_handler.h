#pragma once

#include <Poco/Any.h>

#include "include/wrapper/cef_message_router.h"

namespace zantrio {

struct QueryHandlerContext;

// The native end of one query bridge. Ownership: shared between the bridge registry and its users.
// Thread: UI.
class IQueryHandler : public CefMessageRouterBrowserSide::Handler {
 public:
  // Kinds of objects that getHandlerData is asked for.
  static constexpr int kDragHandler = 1;
  static constexpr int kAppLifecycleEventsHandler = 2;

  // Hands over the shared objects of the browser client. The handler copies those that it keeps.
  virtual void setHandlerData(const QueryHandlerContext& context) = 0;
  // An IDragHandler* or IAppLifecycleEventsHandler*, living as long as the handler; empty when
  // the handler offers none of that kind.
  virtual Poco::Any getHandlerData(int kind) = 0;
};

}  // namespace zantrio
