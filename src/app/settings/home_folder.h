#pragma once

#include <string>

namespace zantrio {

// Sets `folder` to the user's home folder from the environment or, without HOME, from the user
// database. Leaves it unchanged when neither has one. Thread: any.
void readHomeFolder(std::string& folder);

}  // namespace zantrio
