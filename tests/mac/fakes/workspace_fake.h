#pragma once

#include <memory>
#include <string>

#include "mac/fakes/method_swap.h"

namespace zantrio::mac_test {

// What was handed to the workspace that stands in for the system's.
struct WorkspaceFake {
  std::string openedUrl;
  bool raises = false;
  bool opens = true;
};

WorkspaceFake& workspace();

// While the result lives, the system's shared workspace is the one above.
std::unique_ptr<ClassMethodSwap> putWorkspaceInPlace();

}  // namespace zantrio::mac_test
