#include "bridge/platform_exceptions.h"

namespace zantrio {

// There are none but C++ exceptions here.
bool callCatchingPlatformExceptions(const std::function<void()>& call) {
  call();
  return true;
}

}  // namespace zantrio
