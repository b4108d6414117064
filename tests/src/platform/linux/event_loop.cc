#include "src/platform/linux/event_loop.h"

#include <QTest>

namespace zantrio::test {

bool waitFor(const std::function<bool()>& done) {
  return QTest::qWaitFor(done, kWaitLimitMs);
}

}  // namespace zantrio::test
