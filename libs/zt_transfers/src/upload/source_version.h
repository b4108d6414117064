#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "engine/attempt.h"
#include "engine/upload_session.h"

namespace zt_transfers {

SourceVersion versionOf(const struct stat& status);

// The consequence of a failed system call on the file; `doing` begins the sentence. A file that is
// missing in a folder that is there is gone; without its folder it may come back. Blocks.
AttemptOutcome outcomeOfSource(int error, const std::string& path, const std::string& doing);

// Tells how the file differs from that version; nothing if its content is the same. Blocks.
std::optional<AttemptOutcome> changeSince(const SourceVersion& version, const std::string& path);

}  // namespace zt_transfers
