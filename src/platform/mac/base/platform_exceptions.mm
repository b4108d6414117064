#include "bridge/platform_exceptions.h"

#import <Foundation/Foundation.h>

namespace zantrio {

bool callCatchingPlatformExceptions(const std::function<void()>& call) {
  @try {
    call();
    return true;
  } @catch (id exception) {
    NSLog(@"Exception of the system caught: %@", exception);
    return false;
  }
}

}  // namespace zantrio
