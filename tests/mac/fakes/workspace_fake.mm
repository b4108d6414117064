#include "mac/fakes/workspace_fake.h"

#import <AppKit/AppKit.h>

#include "mac/fakes/core_foundation_fake.h"

namespace zantrio::mac_test {

WorkspaceFake& workspace() {
  static WorkspaceFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

@interface RecordingWorkspace : NSObject
@end

@implementation RecordingWorkspace
+ (id)sharedWorkspace {
  return [[[RecordingWorkspace alloc] init] autorelease];
}

- (BOOL)openURL:(NSURL*)url {
  workspace().openedUrl = textOf([url absoluteString]);
  if (workspace().raises) {
    [NSException raise:NSGenericException format:@"workspace"];
  }
  return workspace().opens;
}
@end

std::unique_ptr<ClassMethodSwap> zantrio::mac_test::putWorkspaceInPlace() {
  return std::make_unique<ClassMethodSwap>([NSWorkspace class], [RecordingWorkspace class],
                                           @selector(sharedWorkspace));
}
