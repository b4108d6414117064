#pragma once

#include <sys/types.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace zantrio {

// Holds the threads of another process where they are, so that their stacks can be read; lets them
// go on with its destruction, as if nothing had been. Thread: the one that it was made on.
class StoppedThreads {
 public:
  // Threads that cannot be stopped within a few seconds are left out.
  explicit StoppedThreads(pid_t process);
  StoppedThreads(const StoppedThreads&) = delete;
  StoppedThreads& operator=(const StoppedThreads&) = delete;
  ~StoppedThreads();

  std::vector<pid_t> threads() const;
  // Why a thread could not be stopped; empty when all could.
  const std::string& error() const { return error_; }

 private:
  bool stopNewThreads(pid_t process);
  bool stop(pid_t thread);

  // With the signal that each was about to get, which it gets when it goes on; 0 for none.
  std::map<pid_t, int> stopped_;
  std::set<pid_t> failed_;
  std::string error_;
};

}  // namespace zantrio
