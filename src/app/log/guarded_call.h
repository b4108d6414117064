#pragma once

#include <functional>

namespace zantrio {

// As `guarded`, for Objective-C++ code, which cannot catch C++ exceptions in every runtime. `body`
// must not raise a platform exception.
void guardedCall(const char* operation, const std::function<void()>& body) noexcept;

}  // namespace zantrio
