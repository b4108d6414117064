#pragma once

#include <functional>

namespace zantrio {

// Runs `call`. False when a platform exception ended it: one that C++ does not know, such as those
// of Cocoa. C++ exceptions pass through. Implemented by each platform.
bool callCatchingPlatformExceptions(const std::function<void()>& call);

}  // namespace zantrio
