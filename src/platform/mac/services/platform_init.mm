#include "platform/mac/services/platform_init.h"

#import <AppKit/AppKit.h>
#import <HockeySDK/HockeySDK.h>

#include <new>

#include "platform/mac/services/crash_manager_delegate.h"

namespace zantrio {
namespace {

// The account under which crash reports are filed.
NSString* const kCrashAccount = @"5f0c2e9a7b3d41e68a2c9d7f0b4e1a36";

// The SDK does not retain its delegate and may call it until the process ends.
CrashManagerDelegate* crashManagerDelegate() {
  static CrashManagerDelegate* const delegate = [[CrashManagerDelegate alloc] init];
  return delegate;
}

void startCrashReporter() {
  NSLog(@"Initializing BITHockeyManager...");
  @try {
    BITHockeyManager* const manager = [BITHockeyManager sharedHockeyManager];
    [manager configureWithIdentifier:kCrashAccount];
    [[manager crashManager] setAutoSubmitCrashReport:YES];
    [[manager crashManager] setDelegate:crashManagerDelegate()];
    [manager startManager];
    NSLog(@"Done initializing BITHockeyManager...");
  } @catch (NSException* exception) {
    NSLog(@"Exception occurred while attempting to init the crash reporter: %@, %@", exception,
          [exception userInfo]);
  }
}

void offerServices() {
  NSLog(@"Initializing Service Provider");
  [NSApp setServicesProvider:[NSApp delegate]];
  NSUpdateDynamicServices();
}

}  // namespace

void CPlatformInitMac::init() {
  @autoreleasepool {
    startCrashReporter();
    offerServices();
  }
}

std::unique_ptr<IPlatformInit> createPlatformInit() {
  return std::unique_ptr<IPlatformInit>(new (std::nothrow) CPlatformInitMac);
}

}  // namespace zantrio
