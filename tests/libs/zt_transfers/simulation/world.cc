#include "simulation/world.h"

namespace zt_transfers::test {

bool CWorld::step(TimePoint limit) {
  if (events_.empty() || events_.begin()->first.first > limit) {
    now_ = limit;
    return false;
  }
  auto event = events_.extract(events_.begin());
  spins_ = event.key().first > now_ ? 0 : spins_ + 1;
  now_ = event.key().first;
  event.mapped()();
  return true;
}

}  // namespace zt_transfers::test
