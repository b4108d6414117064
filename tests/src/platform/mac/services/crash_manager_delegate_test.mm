#include "platform/mac/services/crash_manager_delegate.h"

#include <cstdlib>

#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/temporary_folder.h"

namespace zantrio::mac_test {
namespace {

// With a home folder of its own.
class CrashManagerDelegateMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    home_ = std::getenv("HOME");
    setenv("HOME", folder_.path().c_str(), 1);
    delegate_ = [[[CrashManagerDelegate alloc] init] autorelease];
  }

  void TearDown() override {
    setenv("HOME", home_.c_str(), 1);
    MacTest::TearDown();
  }

  const test::TemporaryFolder folder_;
  std::string home_;
  CrashManagerDelegate* delegate_ = nil;
};

TEST_F(CrashManagerDelegateMac, AttachesTheLogTailsOfTheApplicationsFolder) {
  const std::string folder = "Library/Application Support/Zantrio CEF/";
  const std::string path = folder_.path() + "/" + folder;
  EXPECT_EQ(textOf([delegate_ getAppLogPath]), path + "zt_app.log");
  EXPECT_EQ(textOf([delegate_ getZtTransfersLogPath]), path + "zt_transfers.log");
  EXPECT_EQ(textOf([delegate_ getZtTransfersSecondaryLogPath]), path + "zt_transfers.log.0");
  EXPECT_EQ(textOf([delegate_ getBrowserLogPath]), path + "cef_browser.log");

  folder_.makeFile(folder + "zt_app.log", "Zo\xC3\xAB started\n");
  const std::string log = textOf([delegate_ applicationLogForCrashManager:nil]);
  EXPECT_NE(log.find(" zt_app.log ---------------------------\n\nZo\xC3\xAB started\n"),
            std::string::npos)
      << log;

  setenv("HOME", "", 1);
  EXPECT_EQ(textOf([delegate_ getAppLogPath]), "");
}

TEST_F(CrashManagerDelegateMac, ConvertsTheLastBytesToText) {
  NSData* const data = [NSData dataWithBytes:"12\0\xC3\xAB"
                                             "345"
                                      length:8];
  EXPECT_EQ(textOf([delegate_ logDataToString:data dataLengthMax:4]), "345")
      << "half a character was kept";
  EXPECT_EQ([[delegate_ logDataToString:data dataLengthMax:9] length], 7U);
  EXPECT_EQ(textOf([delegate_ logDataToString:nil dataLengthMax:5]), "");
}

}  // namespace
}  // namespace zantrio::mac_test
