#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/unique_fd.h"

namespace zt_transfers::test {

// A run of kill_probe, with these arguments, in a process of its own, which ends with the object.
class CProbe {
 public:
  explicit CProbe(const std::vector<std::string>& arguments);
  ~CProbe();
  CProbe(const CProbe&) = delete;
  CProbe& operator=(const CProbe&) = delete;

  void kill();
  // Gives the process's status.
  int wait();
  // All it has printed; ends with the process.
  std::string output();

 private:
  CUniqueFd output_;
  pid_t process_ = -1;
};

// How long each test is to go on with killing; script/soak gives them more time together.
std::chrono::seconds killingTime();

}  // namespace zt_transfers::test
