#include "src/platform/mac/fakes/application_fake.h"

#include "src/platform/mac/fakes/calls.h"

using namespace zantrio::mac_test;

@interface RecordingApplication : NSObject {
  id _delegate;
  id _servicesProvider;
}
@end

@implementation RecordingApplication
- (id)init {
  self = [super init];
  _delegate = [[NSObject alloc] init];
  return self;
}

- (void)dealloc {
  [_delegate release];
  [super dealloc];
}

- (id)delegate {
  return _delegate;
}

- (id)servicesProvider {
  return _servicesProvider;
}

- (void)setServicesProvider:(id)provider {
  recordCall("setServicesProvider:");
  _servicesProvider = provider;
}

- (void)activateIgnoringOtherApps:(BOOL)flag {
  recordCall(flag ? "activateIgnoringOtherApps:" : "activate beside others");
}

- (void)replyToOpenOrPrint:(NSApplicationDelegateReply)reply {
  recordCall("replyToOpenOrPrint: " + std::to_string(reply));
}
@end

// In place of the system's.
void NSUpdateDynamicServices(void) {
  recordCall("NSUpdateDynamicServices");
}

namespace zantrio::mac_test {

ApplicationInPlace::ApplicationInPlace() : before_(NSApp) {
  NSApp = (NSApplication*)[[RecordingApplication alloc] init];
}

ApplicationInPlace::~ApplicationInPlace() {
  [NSApp release];
  NSApp = before_;
}

}  // namespace zantrio::mac_test
