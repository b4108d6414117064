#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace zantrio {

struct CfReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// Owns a CoreFoundation object that a function with Create or Copy in its name has given.
template <class Ref>
using CfOwned = std::unique_ptr<std::remove_pointer_t<Ref>, CfReleaser>;

}  // namespace zantrio
