#include "platform/mac/power_assertion.h"

#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"

namespace zt_transfers::test {
namespace {

using zantrio::mac_test::calls;
using zantrio::mac_test::fakeSystem;
using zantrio::mac_test::MacTest;
using Lines = std::vector<std::string>;

class CLines final : public ILog {
 public:
  void write(Priority, std::string_view message) noexcept override { lines.emplace_back(message); }
  Lines lines;
};

const std::string kAssertion =
    "assert PreventUserIdleSystemSleep at level 255 'Files are sent \u2013 wait'";

class PowerAssertion : public MacTest {
 protected:
  CLines log;
  std::unique_ptr<ISleepInhibitor> inhibitor =
      makeSleepInhibitor("Files are sent \u2013 wait", log);
};

TEST_F(PowerAssertion, HoldsOneUntilItIsReleased) {
  inhibitor->inhibit();
  inhibitor->inhibit();
  EXPECT_EQ(calls(), Lines{kAssertion});
  inhibitor->release();
  inhibitor->release();
  inhibitor->inhibit();
  inhibitor.reset();
  EXPECT_EQ(calls(), (Lines{kAssertion, "end assertion 1", kAssertion, "end assertion 2"}));
  EXPECT_EQ(log.lines, Lines{});
}

TEST_F(PowerAssertion, TellsOnceThatItIsRefusedAndTakesTheNextItGets) {
  fakeSystem().assertionResult = -536870174;
  inhibitor->inhibit();
  inhibitor->inhibit();
  inhibitor->release();
  EXPECT_EQ(calls(), (Lines{kAssertion, kAssertion}));
  EXPECT_EQ(log.lines, Lines{"The machine may go to sleep during transfers, it cannot be kept "
                             "awake: the power manager answers -536870174"});
  fakeSystem().assertionResult = 0;
  inhibitor->inhibit();
  inhibitor.reset();
  EXPECT_EQ(calls().back(), "end assertion 1");
}

}  // namespace
}  // namespace zt_transfers::test
