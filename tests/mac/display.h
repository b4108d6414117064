#pragma once

#include <sys/types.h>

namespace zantrio::mac_test {

// A display of the tests' own, on which GNUstep shows the application.
class Display {
 public:
  Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;
  ~Display();

 private:
  pid_t server_ = 0;
};

}  // namespace zantrio::mac_test
