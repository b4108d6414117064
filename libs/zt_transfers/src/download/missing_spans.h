#pragma once

#include <cstdint>

#include "engine/download_resume.h"

namespace zt_transfers {

// What of the first `size` bytes is not in `there`.
ByteSpans missingSpans(const ByteSpans& there, std::uint64_t size);

// Takes the first bytes that are missing, `most` at a time; there must be some.
ByteSpan takeFirst(ByteSpans& missing, std::uint64_t most);

}  // namespace zt_transfers
