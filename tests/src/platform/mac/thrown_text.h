#pragma once

#include <functional>
#include <string>

namespace zantrio::mac_test {

// The text of the standard exception that `call` throws; empty when it throws none. Objective-C's
// runtime here lets no C++ exception be caught in its own files.
std::string textThrownBy(const std::function<void()>& call);

}  // namespace zantrio::mac_test
