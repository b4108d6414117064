#pragma once

namespace zantrio {

// Through this the web application reports its own life to the browser client.
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
