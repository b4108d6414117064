#include "app/guarded_call.h"

#include "app/guarded.h"

namespace zantrio {

void guardedCall(const char* operation, const std::function<void()>& body) noexcept {
  guarded(operation, body);
}

}  // namespace zantrio
