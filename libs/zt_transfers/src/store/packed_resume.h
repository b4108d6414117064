#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/orphan.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// What attempts have left behind, as it is kept on disk: of a download's bytes only the durable
// ones, since the others may not survive the machine.
std::string packed(const TransferResume& resume);
// Nothing when the bytes make no sense.
std::optional<TransferResume> unpackedResume(std::string_view bytes);

std::string packed(const Orphan& orphan);
std::optional<Orphan> unpackedOrphan(std::string_view bytes);

}  // namespace zt_transfers
