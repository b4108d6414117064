#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "engine/failure.h"
#include "engine/upload_session.h"

namespace zt_transfers {

SourceVersion versionOf(const struct stat& status);

// Tells how the file differs from that version; nothing if its content is the same. Blocks.
std::optional<Problem> changeSince(const SourceVersion& version, const std::string& path);

}  // namespace zt_transfers
