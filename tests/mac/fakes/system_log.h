#pragma once

namespace zantrio::mac_test {

// From now on the system's log (NSLog) is recorded among the calls, each line as "log: " and its
// text, and no longer written.
void recordSystemLog();

}  // namespace zantrio::mac_test
