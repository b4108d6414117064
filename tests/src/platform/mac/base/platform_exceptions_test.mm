#include "bridge/platform_exceptions.h"

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/mac_fixture.h"

namespace zantrio::mac_test {
namespace {

using PlatformExceptionsMac = MacTest;

struct Guard {
  explicit Guard(bool& set) : ended(set) {}
  ~Guard() { ended = true; }
  bool& ended;
};

TEST_F(PlatformExceptionsMac, AnExceptionOfTheSystemEndsTheCallAndIsLogged) {
  bool destroyed = false;
  EXPECT_FALSE(callCatchingPlatformExceptions([&destroyed] {
    const Guard guard(destroyed);
    [NSException raise:NSRangeException format:@"out of range"];
  }));
  EXPECT_TRUE(destroyed) << "what the call owned was destroyed on the way";
  ASSERT_EQ(calls().size(), 1U);
  EXPECT_NE(calls()[0].find("out of range"), std::string::npos);
}

TEST_F(PlatformExceptionsMac, AnObjectThatIsNoExceptionCountsAsOne) {
  EXPECT_FALSE(callCatchingPlatformExceptions([] { @throw @"thrown"; }));
}

TEST_F(PlatformExceptionsMac, ACallThatEndsByItselfIsWhole) {
  bool called = false;
  EXPECT_TRUE(callCatchingPlatformExceptions([&called] { called = true; }));
  EXPECT_TRUE(called);
  EXPECT_TRUE(calls().empty());
}

}  // namespace
}  // namespace zantrio::mac_test
