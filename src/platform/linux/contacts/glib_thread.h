#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/linux/contacts/glib_handles.h"

namespace zantrio {

// A thread in which GLib's events are handled, apart from the program's own event loop: what is
// begun in it hears of its end in it. Its end waits for calls that are under way, a moment at most.
class CGlibThreadLinux {
 public:
  CGlibThreadLinux();
  CGlibThreadLinux(const CGlibThreadLinux&) = delete;
  CGlibThreadLinux& operator=(const CGlibThreadLinux&) = delete;
  // Calls that are under way are to be cancelled before; tasks that still wait are not run.
  ~CGlibThreadLinux();

  // Runs the task in the thread, after those posted before. Thread: any.
  void post(std::function<void()> task);

  // The rest is for the thread's own use.
  void runLater(std::chrono::milliseconds delay, std::function<void()> task);
  // Held while an asynchronous call of GLib's kind is under way.
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

  // Of the thread alone.
  const CallToken calls_;
  bool stopping_ = false;
  bool expired_ = false;

  std::thread thread_;
};

}  // namespace zantrio
