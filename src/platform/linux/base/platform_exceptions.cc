#include "bridge/platform_exceptions.h"

namespace zantrio {

// Linux has only C++ exceptions.
bool callCatchingPlatformExceptions(const std::function<void()>& call) {
  call();
  return true;
}

}  // namespace zantrio
