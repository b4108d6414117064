#include "app/log/guarded_call.h"

#include "app/log/guarded.h"

namespace zantrio {

void guardedCall(const char* operation, const std::function<void()>& body) noexcept {
  guarded(operation, body);
}

}  // namespace zantrio
