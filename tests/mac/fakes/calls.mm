#include "mac/fakes/calls.h"

namespace zantrio::mac_test {

std::vector<std::string>& calls() {
  static std::vector<std::string> recorded;
  return recorded;
}

void recordCall(const std::string& call) {
  calls().push_back(call);
}

}  // namespace zantrio::mac_test
