#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mac/fakes/method_swap.h"

namespace zantrio::mac_test {

// What the open panel that stands in for the system's answers, and what was set on it.
struct OpenPanelFake {
  long answer = 1;
  std::vector<std::string> urls;
  std::string raisesIn;  // the name of a message that raises an exception

  std::map<std::string, bool> flags;
  std::string title;
  bool hasDirectory = true;
};

OpenPanelFake& openPanel();

// While the result lives, the system's open panel is the one above.
std::unique_ptr<ClassMethodSwap> putOpenPanelInPlace();

}  // namespace zantrio::mac_test
