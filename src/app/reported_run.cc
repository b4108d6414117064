#include "app/reported_run.h"

#include <exception>
#include <iostream>

namespace zantrio {

int runReported(const char* program, const std::function<int()>& run) {
  try {
    return run();
  } catch (const std::exception& exception) {
    std::cerr << program << ": " << exception.what() << std::endl;
    return 1;
  }
}

}  // namespace zantrio
