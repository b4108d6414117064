#pragma once

#include <atomic>

namespace zt_transfers::test {

// While it lives, SQLite finds the disk full whenever `full` is set. What is there can be read.
class CFullDisk {
 public:
  CFullDisk();
  ~CFullDisk();
  CFullDisk(const CFullDisk&) = delete;
  CFullDisk& operator=(const CFullDisk&) = delete;

  void setFull(bool full);
  // How often something was refused.
  int refusals() const;
};

}  // namespace zt_transfers::test
