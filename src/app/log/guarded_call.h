#pragma once

#include <functional>

namespace zantrio {

// As `guarded`, for Objective-C++: on some of its runtimes code of that language cannot catch the
// exceptions of C++. `body` must not raise one of the system's.
void guardedCall(const char* operation, const std::function<void()>& body) noexcept;

}  // namespace zantrio
