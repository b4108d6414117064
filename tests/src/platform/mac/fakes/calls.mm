#include "src/platform/mac/fakes/calls.h"

#import <Foundation/Foundation.h>

namespace zantrio::mac_test {

std::vector<std::string>& calls() {
  static std::vector<std::string> recorded;
  return recorded;
}

void recordCall(const std::string& call) {
  calls().push_back(call);
}

namespace {

// A line begins with the time, the program and "[process:thread] ", and ends with a line feed.
void record(NSString* written) {
  std::string line = [written UTF8String];
  line.erase(0, line.find("] ") + 2);
  line.erase(line.find_last_not_of('\n') + 1);
  // The X server's complaints about closed windows do not concern the client.
  if (!line.starts_with("X-Windows error")) {
    recordCall("log: " + line);
  }
}

}  // namespace

void recordSystemLog() {
  _NSLog_printf_handler = record;
}

}  // namespace zantrio::mac_test
