#pragma once

#include <string>
#include <vector>

namespace zantrio::mac_test {

// The calls of the fakes and the lines of the system's log, in order.
std::vector<std::string>& calls();

void recordCall(const std::string& call);

// Redirects NSLog into the calls, each line as "log: " and its text.
void recordSystemLog();

}  // namespace zantrio::mac_test
