#pragma once

#include <cstdint>

#include "osr/view/osr_view.h"

namespace client {

// Counts multiple clicks, for systems whose events report at most a double click: presses of the
// same button that are close in time and position. Thread: UI.
class ClickCounter {
 public:
  struct Press {
    int button = 0;
    OsrPoint point;
    int64_t ms = 0;  // of any clock
  };

  // `ms` and `distance`: the maximum time and distance between consecutive presses.
  ClickCounter(int64_t ms, double distance) : ms_(ms), distance_(distance) {}

  // Returns the press's number, from 1.
  int pressed(const Press& press);
  // The latest press's number; 0 before the first.
  int count() const { return count_; }

 private:
  bool follows(const Press& press) const;

  const int64_t ms_;
  const double distance_;
  Press last_;
  int count_ = 0;
};

}  // namespace client
