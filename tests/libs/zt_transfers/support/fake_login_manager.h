#pragma once

#include <systemd/sd-bus.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "base/unique_fd.h"
#include "sandbox.h"

namespace zt_transfers::test {

// A system bus of the test's own, which this process uses as long as the object lives, and on it
// what stands in for the system's login manager.
class CFakeLoginManager {
 public:
  CFakeLoginManager();
  CFakeLoginManager(const CFakeLoginManager&) = delete;
  CFakeLoginManager& operator=(const CFakeLoginManager&) = delete;
  ~CFakeLoginManager();

  // From now on locks are refused, or not.
  void refuse(bool refused) { refused_ = refused; }
  // The arguments of all calls, each as "what|who|why|mode".
  std::vector<std::string> calls();
  // Locks that were given out and are still held.
  int held();
  // False when that takes longer than a minute.
  bool waitForHeld(int count);

 private:
  static int onInhibit(sd_bus_message* message, void* self, sd_bus_error* error);

  void startDaemon();
  void connect();
  void serve();

  CSandbox sandbox_;
  FILE* daemon_ = nullptr;
  int daemonId_ = 0;
  std::string address_;
  sd_bus* bus_ = nullptr;
  std::atomic<bool> refused_ = false;
  std::atomic<bool> stopping_ = false;

  std::mutex mutex_;
  // Guarded by mutex_.
  std::vector<std::string> calls_;
  std::vector<CUniqueFd> locks_;  // the other ends of those that were given out

  std::thread thread_;
};

}  // namespace zt_transfers::test
