#include "src/platform/event_loop.h"

#include <QTest>

namespace zantrio::test {

bool waitFor(const std::function<bool()>& done) {
  return QTest::qWaitFor(done, kWaitLimitMs);
}

}  // namespace zantrio::test
