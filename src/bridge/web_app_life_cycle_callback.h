#pragma once

namespace zantrio {

// The web application reports its own life cycle to the browser client through this interface.
// Ownership: the browser client, which outlives the bridges. Thread: UI.
class IWebAppLifeCycleCallback {
 public:
  // The web application has loaded and is ready.
  virtual void onStartup() = 0;
  // The web application asks the application to close.
  virtual void onShutdown() = 0;

 protected:
  ~IWebAppLifeCycleCallback() = default;
};

}  // namespace zantrio
