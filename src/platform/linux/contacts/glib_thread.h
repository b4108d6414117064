#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/linux/contacts/glib_handles.h"

namespace zantrio {

// A thread with a GLib main context of its own, separate from the application's event loop. Calls
// begun on it complete on it. Destruction waits briefly for pending calls.
class CGlibThreadLinux {
 public:
  CGlibThreadLinux();
  CGlibThreadLinux(const CGlibThreadLinux&) = delete;
  CGlibThreadLinux& operator=(const CGlibThreadLinux&) = delete;
  // Pending calls must be cancelled first; queued tasks are dropped.
  ~CGlibThreadLinux();

  // Runs the task on the thread, after earlier ones. Thread: any.
  void post(std::function<void()> task);

  // The functions below are only for this thread.
  void runLater(std::chrono::milliseconds delay, std::function<void()> task);
  // Held by each pending asynchronous GLib call.
  using CallToken = std::shared_ptr<void>;
  CallToken beginCall() const { return calls_; }

 private:
  void run();
  void runPosted();
  std::vector<std::function<void()>> takePosted();
  bool isFinished() const;

  const GMainContextPtr context_;

  std::mutex mutex_;
  std::vector<std::function<void()>> posted_;  // guarded by mutex_

  // Used only on this thread.
  const CallToken calls_;
  bool stopping_ = false;
  bool expired_ = false;

  std::thread thread_;
};

}  // namespace zantrio
