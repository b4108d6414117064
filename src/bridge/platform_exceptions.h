#pragma once

#include <functional>

namespace zantrio {

// Runs `call` and gives false when an exception of the platform's own kind (one that C++ does not
// know, as Cocoa has them) ended it. C++ exceptions pass through. Implemented by each platform.
bool callCatchingPlatformExceptions(const std::function<void()>& call);

}  // namespace zantrio
