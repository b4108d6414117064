#pragma once

namespace zantrio {

// Offered by query handlers that follow the application's life cycle
// (IQueryHandler::getHandlerData, kind 2). Ownership: the query handler's. Thread: UI.
class IAppLifecycleEventsHandler {
 public:
  // The web application has announced that it is ready.
  virtual void appStarted() = 0;
  // The browser is closing; the handler is released soon after.
  virtual void appExiting() = 0;

 protected:
  ~IAppLifecycleEventsHandler() = default;
};

}  // namespace zantrio
