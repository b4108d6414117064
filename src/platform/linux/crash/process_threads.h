// The threads of another process.
#pragma once

#include <sys/types.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace zantrio {

// The thread ids of a process in ascending order. Empty if it no longer exists.
std::vector<pid_t> threadsOf(pid_t process);

// A thread's number and name, as in "1234 (zt-net-up)".
std::string nameThread(pid_t process, pid_t thread);

// Stops the threads of another process so that their stacks can be read; the destructor resumes
// them. Thread: the constructing one.
class StoppedThreads {
 public:
  // Skips threads that do not stop within two seconds.
  explicit StoppedThreads(pid_t process);
  StoppedThreads(const StoppedThreads&) = delete;
  StoppedThreads& operator=(const StoppedThreads&) = delete;
  ~StoppedThreads();

  std::vector<pid_t> threads() const;
  // Why a thread could not be stopped; empty if all were.
  const std::string& error() const { return error_; }

 private:
  bool stopNewThreads(pid_t process);
  bool stop(pid_t thread);

  // Maps each thread to the pending signal that it gets when resumed; 0 for none.
  std::map<pid_t, int> stopped_;
  std::set<pid_t> failed_;
  std::string error_;
};

}  // namespace zantrio
