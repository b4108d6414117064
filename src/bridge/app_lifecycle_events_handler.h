#pragma once

namespace zantrio {

// Offered by query handlers that follow the application's life (IQueryHandler::getHandlerData,
// kind 2). Ownership: the query handler's own. Thread: UI.
class IAppLifecycleEventsHandler {
 public:
  // The web application has announced itself.
  virtual void appStarted() = 0;
  // The browser is closing; the handler is released soon after.
  virtual void appExiting() = 0;

 protected:
  ~IAppLifecycleEventsHandler() = default;
};

}  // namespace zantrio
