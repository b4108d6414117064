// One process for a root cache path.
#pragma once

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace cef_qt {

std::string currentDirectory();

// Holds a lock on a file in the folder, which the system drops when the process ends, however it
// ends, and listens on a socket beside it for processes that were started later.
class InstanceLock {
 public:
  struct Relaunch {
    std::vector<std::string> argv;
    std::string directory;
  };
  enum class Outcome {
    kAcquired,
    kOtherNotified,  // another process holds the lock and knows of this one
    kUnlocked        // there can be no lock here; reported on standard error
  };

  explicit InstanceLock(std::string folder) : folder_(std::move(folder)) {}
  ~InstanceLock();
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  // Takes the lock, or tells its holder of this process. `onRelaunch` is called on a thread of the
  // lock's own, from then on until the destruction.
  Outcome acquire(const Relaunch& self, std::function<void(const Relaunch&)> onRelaunch);

 private:
  bool tryLock();
  void listen();
  void serve();
  void receive(int connection) const;
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
