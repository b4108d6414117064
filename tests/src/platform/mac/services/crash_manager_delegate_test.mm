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

  void writeLog(const std::string& name, const std::string& text) const {
    folder_.makeFile("Library/Application Support/Zantrio CEF/" + name, text);
  }

  std::string log() const { return textOf([delegate_ applicationLogForCrashManager:nil]); }

  std::string tail(const std::string& bytes, NSUInteger maximum) const {
    NSData* const data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    NSString* const text = [delegate_ logDataToString:data dataLengthMax:maximum];
    return std::string([text UTF8String], [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]);
  }

  const test::TemporaryFolder folder_;
  std::string home_;
  CrashManagerDelegate* delegate_ = nil;
};

std::string header(const std::string& name) {
  return "---------------------- " + name + " ---------------------------\n\n";
}

TEST_F(CrashManagerDelegateMac, TheLogsAreThoseInTheApplicationsFolder) {
  const std::string folder = folder_.path() + "/Library/Application Support/Zantrio CEF/";
  EXPECT_EQ(textOf([delegate_ getAppLogPath]), folder + "zt_app.log");
  EXPECT_EQ(textOf([delegate_ getZtTransfersLogPath]), folder + "zt_transfers.log");
  EXPECT_EQ(textOf([delegate_ getZtTransfersSecondaryLogPath]), folder + "zt_transfers.log.0");
  EXPECT_EQ(textOf([delegate_ getBrowserLogPath]), folder + "cef_browser.log");
}

TEST_F(CrashManagerDelegateMac, WithoutAHomeFolderThereAreNoLogs) {
  setenv("HOME", "", 1);
  EXPECT_EQ(textOf([delegate_ getAppLogPath]), "");
  EXPECT_EQ(textOf([delegate_ getBrowserLogPath]), "");
}

TEST_F(CrashManagerDelegateMac, JoinsTheEndsOfTheLogs) {
  writeLog("zt_app.log", "Zo\xC3\xAB started\n");
  writeLog("zt_transfers.log", std::string(9280, 'a') + std::string(30720, 'b'));
  writeLog("zt_transfers.log.0", "left out");
  writeLog("cef_browser.log", "browser");
  EXPECT_EQ(log(), header("zt_app.log") + "Zo\xC3\xAB started\n\n\n" + header("zt_transfers.log") +
                       std::string(30720, 'b') + "\n\n" + header("cef_browser.log") + "browser");
}

TEST_F(CrashManagerDelegateMac, DataBecomesTheTextOfItsLastBytes) {
  EXPECT_EQ(tail("", 5), "");
  EXPECT_EQ(tail("1234567", 5), "34567");
  EXPECT_EQ(tail(std::string("a\0b", 3), 5), std::string("a\0b", 3));
  EXPECT_EQ(tail("12\xC3\xAB"
                 "3",
                 2),
            "3")
      << "what is left of a character at the cut";
  EXPECT_EQ(textOf([delegate_ logDataToString:nil dataLengthMax:5]), "");
}

}  // namespace
}  // namespace zantrio::mac_test
