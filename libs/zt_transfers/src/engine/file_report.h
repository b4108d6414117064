#pragma once

#include <string>

#include "engine/attempt_table.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

// A file as the program is told. `job` is its attempt under way, or null; `kept` is what attempts
// before have left of it, in bytes.
FileState reportOf(const CTransferGroup& group, std::uint32_t index, std::string fileId,
                   const RunningAttempt* attempt, std::uint64_t kept, TimePoint now);

}  // namespace zt_transfers
