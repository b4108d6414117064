#pragma once

#include <string>

namespace zantrio {

// Sets `folder` to the user's home folder: what the environment says, else the user database.
// Leaves it as it was when neither knows one. Thread: any.
void readHomeFolder(std::string& folder);

}  // namespace zantrio
