#pragma once

#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace zt_transfers {

// The right to use a database: one holder at a time, in this process or another. It ends with the
// object, or with the process however that ends.
class CDatabaseLock {
 public:
  // `path`: a file beside the database, which stays there. Nothing while another holds it.
  // Throws std::system_error when that cannot be told.
  static std::optional<CDatabaseLock> take(const std::string& path);

 private:
  explicit CDatabaseLock(CUniqueFd file) : file_(std::move(file)) {}

  CUniqueFd file_;
};

}  // namespace zt_transfers
