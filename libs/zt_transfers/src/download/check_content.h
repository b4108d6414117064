#pragma once

#include <cstdint>
#include <optional>

#include "download/partial_file.h"
#include "engine/attempt.h"

namespace zt_transfers {

// What follows when the file, all of which has arrived, is not what it should be: wrong content is
// removed. Nothing when all is well. Blocks.
std::optional<AttemptOutcome> checkContent(CPartialFile& file, AttemptProgress& progress,
                                           std::uint64_t size);

}  // namespace zt_transfers
