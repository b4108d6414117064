#pragma once

#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace zt_transfers {

// Exclusive access to a database, among all processes and within one. It ends with the object or
// the process.
class CDatabaseLock {
 public:
  // `path`: a lock file beside the database, which stays there. Nothing while another object holds
  // the lock. Throws std::system_error when the lock file cannot be used.
  static std::optional<CDatabaseLock> take(const std::string& path);

 private:
  explicit CDatabaseLock(CUniqueFd file) : file_(std::move(file)) {}

  CUniqueFd file_;
};

}  // namespace zt_transfers
