#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "engine/failure.h"
#include "engine/upload_session.h"

namespace zt_transfers {

SourceVersion versionOf(const struct stat& status);

// Says what has become of the file if its content is not that version any more. Blocks.
std::optional<Trouble> changeSince(const SourceVersion& version, const std::string& path);

}  // namespace zt_transfers
