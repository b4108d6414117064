#include "src/platform/mac/thrown_text.h"

#include <exception>

namespace zantrio::mac_test {

std::string textThrownBy(const std::function<void()>& call) {
  try {
    call();
    return {};
  } catch (const std::exception& exception) {
    return exception.what();
  }
}

}  // namespace zantrio::mac_test
