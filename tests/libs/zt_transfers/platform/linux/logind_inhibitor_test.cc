#include "platform/linux/logind_inhibitor.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "fake_login_manager.h"
#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

class CLines final : public ILog {
 public:
  void write(Priority, std::string_view message) noexcept override { lines.emplace_back(message); }
  std::vector<std::string> lines;
};

TEST(LogindInhibitor, HoldsOneLockUntilItIsReleased) {
  CFakeLoginManager system;
  CLines log;
  CLogindInhibitor inhibitor("Files are sent", log);
  inhibitor.inhibit();
  inhibitor.inhibit();
  EXPECT_EQ(system.calls(), std::vector<std::string>{"sleep:idle|Zantrio|Files are sent|block"});
  EXPECT_EQ(system.held(), 1);
  inhibitor.release();
  inhibitor.release();
  EXPECT_TRUE(system.waitForHeld(0));
  inhibitor.inhibit();
  EXPECT_EQ(system.held(), 1);
  EXPECT_EQ(log.lines, std::vector<std::string>{});
}

TEST(LogindInhibitor, TellsOnceThatLocksAreRefusedAndTakesTheNextItGets) {
  CFakeLoginManager system;
  CLines log;
  CLogindInhibitor inhibitor("Files are sent", log);
  system.refuse(true);
  inhibitor.inhibit();
  inhibitor.inhibit();
  EXPECT_EQ(log.lines, std::vector<std::string>{
                           "The machine may go to sleep during transfers, it cannot be kept "
                           "awake: the login manager: Not for you"});
  system.refuse(false);
  inhibitor.inhibit();
  EXPECT_EQ(system.held(), 1);
}

TEST(LogindInhibitor, TellsOnceThatThereIsNoSystemBus) {
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  CLines log;
  CLogindInhibitor inhibitor("Files are sent", log);
  inhibitor.inhibit();
  inhibitor.inhibit();
  ASSERT_EQ(log.lines.size(), 1U);
  EXPECT_NE(log.lines[0].find("it cannot be kept awake: "), std::string::npos);
}

// The system is there before the manager's threads are.
struct CHasSystem {
  CFakeLoginManager system;
};

class SleepPrevention : public CHasSystem, public CUploadTest {
 protected:
  void preventSleep(bool prevent) {
    auto configuration = manager.getConfiguration();
    configuration.preventSleep = prevent;
    manager.setConfiguration(configuration);
  }
};

TEST_F(SleepPrevention, LastsAsLongAsSomethingIsTransferring) {
  server.planForAll(fault::hold());
  EXPECT_EQ(system.held(), 0);
  const auto group = upload({describe("a", "content")});
  EXPECT_TRUE(system.waitForHeld(1));
  server.release();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_TRUE(system.waitForHeld(0));
  EXPECT_EQ(system.calls().size(), 1U);
}

TEST_F(SleepPrevention, EndsWithAPauseAndWithTheManager) {
  server.planForAll(fault::hold());
  const auto group = upload({describe("a", "content")});
  ASSERT_TRUE(system.waitForHeld(1));
  manager.pauseGroup(group);
  EXPECT_TRUE(system.waitForHeld(0));
  manager.resumeGroup(group);
  ASSERT_TRUE(system.waitForHeld(1));
  manager.shutdown();
  EXPECT_TRUE(system.waitForHeld(0));
}

TEST_F(SleepPrevention, FollowsTheSetting) {
  preventSleep(false);
  server.planForAll(fault::hold());
  const auto group = upload({describe("a", "content")});
  ASSERT_TRUE(server.waitForRequests(1));
  EXPECT_EQ(system.calls().size(), 0U);
  preventSleep(true);
  EXPECT_TRUE(system.waitForHeld(1));
  preventSleep(false);
  EXPECT_TRUE(system.waitForHeld(0));
  server.release();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(system.calls().size(), 1U);
}

}  // namespace
}  // namespace zt_transfers::test
