// The lock that allows one process for each root cache path.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "process/relaunch_message.h"

namespace cef_qt {

std::string currentDirectory();

// Locks a file in the folder and listens on a socket beside it for later processes of the same
// user; others may not connect, and would not be heard. The system
// releases the lock when the process ends, also after a crash.
class InstanceLock {
 public:
  using Relaunch = cef_qt::Relaunch;
  enum class Outcome {
    kAcquired,
    kOtherNotified,  // another process holds the lock and was notified
    kUnlocked        // locking failed; reported on standard error
  };

  explicit InstanceLock(std::string folder) : folder_(std::move(folder)) {}
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  // Takes the lock, or notifies its holder of this process. Blocks up to ten seconds if the holder
  // does not respond. `onRelaunch` is called on the lock's own thread until the destruction.
  Outcome acquire(const Relaunch& self, std::function<void(const Relaunch&)> onRelaunch);

 private:
  bool tryLock();
  void listen();
  void serve();
  void accept(std::vector<RelaunchConnection>& connections) const;
  bool hasEnded(RelaunchConnection& connection) const;
  bool notifyHolder(const Relaunch& self) const;

  const std::string folder_;
  std::function<void(const Relaunch&)> onRelaunch_;
  int folderFd_ = -1;
  int lockFd_ = -1;
  int socketFd_ = -1;
  int wakeFd_ = -1;
  std::thread server_;
};

}  // namespace cef_qt
