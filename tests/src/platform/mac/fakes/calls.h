#pragma once

#include <string>
#include <vector>

namespace zantrio::mac_test {

// What was called of the fakes, and what was written to the system's log, in one order.
std::vector<std::string>& calls();

void recordCall(const std::string& call);

// From now on the system's log (NSLog) is recorded too, each line as "log: " and its text, and no
// longer written.
void recordSystemLog();

}  // namespace zantrio::mac_test
