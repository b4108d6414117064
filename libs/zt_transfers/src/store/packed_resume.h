#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/transfer_resume.h"

namespace zt_transfers {

// Resume data and orphans as stored on disk. Of a download's bytes only the durable ones are
// stored, as the others may not survive a power cut.
std::string packed(const TransferResume& resume);
// Nothing when the bytes are malformed.
std::optional<TransferResume> unpackedResume(std::string_view bytes);

std::string packed(const Orphan& orphan);
std::optional<Orphan> unpackedOrphan(std::string_view bytes);

}  // namespace zt_transfers
