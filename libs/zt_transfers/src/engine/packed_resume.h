#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/download_resume.h"

namespace zt_transfers {

// What a download has left behind, as it is kept on disk: of its bytes only the durable ones, since
// the others may not survive the machine.
std::string packed(const DownloadResume& resume);
// Nothing when the bytes make no sense.
std::optional<DownloadResume> unpackedResume(std::string_view bytes);

}  // namespace zt_transfers
