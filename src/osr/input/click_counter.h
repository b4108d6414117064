#pragma once

#include <cstdint>

#include "osr/view/osr_view.h"

namespace client {

// Counts presses of one button that follow each other shortly and in one place, for systems whose
// events tell no more than a double click. Thread: UI.
class ClickCounter {
 public:
  struct Press {
    int button = 0;
    OsrPoint point;
    int64_t ms = 0;  // of any clock
  };

  // Presses are counted together up to this time and distance from each to the next.
  ClickCounter(int64_t ms, double distance) : ms_(ms), distance_(distance) {}

  // Gives the press's number, from 1.
  int pressed(const Press& press);
  // Of the latest press; 0 before the first.
  int count() const { return count_; }

 private:
  bool follows(const Press& press) const;

  const int64_t ms_;
  const double distance_;
  Press last_;
  int count_ = 0;
};

}  // namespace client
