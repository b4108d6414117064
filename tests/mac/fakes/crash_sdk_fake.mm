#include "mac/fakes/crash_sdk_fake.h"

#include "mac/fakes/calls.h"
#include "mac/fakes/core_foundation_fake.h"

namespace zantrio::mac_test {
namespace {

void called(const std::string& message) {
  recordCall(message);
  if (crashSdk().raisesIn == message) {
    @throw [NSException exceptionWithName:@"CrashSdk"
                                   reason:@"refused"
                                 userInfo:@{@"why" : @"test"}];
  }
}

}  // namespace

CrashSdkFake& crashSdk() {
  static CrashSdkFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

@implementation BITCrashManager
@dynamic autoSubmitCrashReport, delegate;

- (void)setAutoSubmitCrashReport:(BOOL)automatically {
  called("setAutoSubmitCrashReport:");
  crashSdk().submitsAutomatically = automatically;
}

- (void)setDelegate:(id<BITCrashManagerDelegate>)delegate {
  called("setDelegate:");
  crashSdk().delegate = delegate;
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
  crashSdk().identifier = textOf(appIdentifier);
}

- (void)startManager {
  called("startManager");
}
@end
