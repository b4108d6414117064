#pragma once

#include <cstdint>
#include <string>

#include "engine/transfer_resume.h"

namespace zt_transfers {

using OrphanId = std::uint32_t;

// What attempts have left of a file, and nobody will go on with.
struct Orphan {
  std::string folder{};  // the group's; downloads only
  TransferResume resume;
  std::int64_t since = 0;  // seconds since 1970

  bool operator==(const Orphan&) const = default;
};

}  // namespace zt_transfers
