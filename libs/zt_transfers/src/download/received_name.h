#pragma once

#include <string>
#include <string_view>

#include "download/target_path.h"

namespace zt_transfers {

// The name under which a received file or folder appears. Other people chose `name`, so:
// - a name with a leading dot or dash, and one that file managers or other systems read as their
//   settings or as a program to start ("desktop.ini"), gets a "_" before it;
// - control characters and invisible ones become "%1B", as their bytes in UTF-8.
// Different names stay different: a name that is already of such a form is changed in the same way.
// All others stay as they are. What would be longer than file systems accept ends in a digest.
std::string receivedName(std::string_view name);

// The same for each name of a path.
TargetPath receivedTarget(const TargetPath& target);

}  // namespace zt_transfers
