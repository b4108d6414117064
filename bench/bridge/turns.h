// Measures two things side by side.
#pragma once

#include <functional>

namespace bench {

// Medians of interleaved turns: rates a second, and the median of each turn's ratio.
struct Comparison {
  double framework = 0;
  double bare = 0;
  double ratio = 0;

  void print(const char* what) const;
};

// Measures both in every turn; they take turns to be first.
Comparison interleave(const std::function<double()>& framework,
                      const std::function<double()>& bare);

}  // namespace bench
