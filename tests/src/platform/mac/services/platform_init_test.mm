#include "services/platform_init.h"

#import <HockeySDK/HockeySDK.h>

#include "platform/mac/services/crash_manager_delegate.h"
#include "src/platform/mac/fakes/application_fake.h"
#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// The calls of the crash-reporting SDK.
struct CrashSdkRecord {
  std::string raisesIn;  // a message that raises an exception
  std::string identifier;
  bool submitsAutomatically = false;
  id<BITCrashManagerDelegate> delegate = nil;  // not owned, as in the SDK
};

CrashSdkRecord sdk;

void called(const std::string& message) {
  recordCall(message);
  if (sdk.raisesIn == message) {
    @throw [NSException exceptionWithName:@"CrashSdk"
                                   reason:@"refused"
                                 userInfo:@{@"why" : @"test"}];
  }
}

}  // namespace

@implementation BITCrashManager
@dynamic autoSubmitCrashReport, delegate;

- (void)setAutoSubmitCrashReport:(BOOL)automatically {
  called("setAutoSubmitCrashReport:");
  sdk.submitsAutomatically = automatically;
}

- (void)setDelegate:(id<BITCrashManagerDelegate>)delegate {
  called("setDelegate:");
  sdk.delegate = delegate;
}
@end

@implementation BITHockeyManager
+ (BITHockeyManager*)sharedHockeyManager {
  static BITHockeyManager* const manager = [[BITHockeyManager alloc] init];
  return manager;
}

- (BITCrashManager*)crashManager {
  static BITCrashManager* const crashManager = [[BITCrashManager alloc] init];
  return crashManager;
}

- (void)configureWithIdentifier:(NSString*)appIdentifier {
  called("configureWithIdentifier:");
  sdk.identifier = textOf(appIdentifier);
}

- (void)startManager {
  called("startManager");
}
@end

namespace zantrio::mac_test {
namespace {

using Calls = std::vector<std::string>;

const Calls kServices = {"log: Initializing Service Provider",
                         "setServicesProvider:", "NSUpdateDynamicServices"};

class PlatformInitMac : public MacTest {
 protected:
  PlatformInitMac() { sdk = {}; }

  const ApplicationInPlace application_;
};

TEST_F(PlatformInitMac, StartsTheCrashReporterAndThenOffersTheServices) {
  createPlatformInit()->init();
  Calls expected = {"log: Initializing BITHockeyManager...",
                    "configureWithIdentifier:",
                    "setAutoSubmitCrashReport:",
                    "setDelegate:",
                    "startManager",
                    "log: Done initializing BITHockeyManager..."};
  expected.insert(expected.end(), kServices.begin(), kServices.end());
  EXPECT_EQ(calls(), expected);
  EXPECT_EQ(sdk.identifier, "5f0c2e9a7b3d41e68a2c9d7f0b4e1a36");
  EXPECT_TRUE(sdk.submitsAutomatically);
  ASSERT_TRUE([sdk.delegate isKindOfClass:[CrashManagerDelegate class]]);
  EXPECT_EQ([sdk.delegate retainCount], 1U) << "the SDK does not retain its delegate";
  EXPECT_NE([NSApp servicesProvider], nil);
  EXPECT_EQ([NSApp servicesProvider], (id)[NSApp delegate]);
}

TEST_F(PlatformInitMac, AnExceptionOfTheCrashReporterIsLoggedAndTheServicesFollow) {
  for (const char* step : {"configureWithIdentifier:", "startManager"}) {
    calls().clear();
    sdk.raisesIn = step;
    createPlatformInit()->init();

    ASSERT_GE(calls().size(), 5U);
    const std::string exception = *(calls().end() - 4);
    EXPECT_TRUE(exception.starts_with("log: Exception occurred while attempting to init the crash "
                                      "reporter: "))
        << exception;
    for (const char* part : {"refused", "why = test"}) {
      EXPECT_NE(exception.find(part), std::string::npos) << exception;
    }
    EXPECT_EQ(Calls(calls().end() - 3, calls().end()), kServices) << step;
  }
}

}  // namespace
}  // namespace zantrio::mac_test
