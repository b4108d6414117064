#include "osr/input/click_counter.h"

#include <cmath>

namespace client {

int ClickCounter::pressed(const Press& press) {
  count_ = follows(press) ? count_ + 1 : 1;
  last_ = press;
  return count_;
}

bool ClickCounter::follows(const Press& press) const {
  return count_ > 0 && press.button == last_.button && press.ms - last_.ms <= ms_ &&
         std::abs(press.point.x - last_.point.x) <= distance_ &&
         std::abs(press.point.y - last_.point.y) <= distance_;
}

}  // namespace client
