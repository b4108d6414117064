#include "mac/fakes/open_panel_fake.h"

#import <AppKit/AppKit.h>

#include "mac/fakes/calls.h"
#include "mac/fakes/core_foundation_fake.h"

namespace zantrio::mac_test {
namespace {

void called(const std::string& message) {
  recordCall(message);
  if (openPanel().raisesIn == message) {
    [NSException raise:NSInternalInconsistencyException format:@"%s", message.c_str()];
  }
}

void setFlag(const std::string& message, BOOL value) {
  called(message);
  openPanel().flags[message] = value;
}

}  // namespace

OpenPanelFake& openPanel() {
  static OpenPanelFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

@interface RecordingOpenPanel : NSObject
@end

@implementation RecordingOpenPanel
+ (id)openPanel {
  called("openPanel");
  return [[[RecordingOpenPanel alloc] init] autorelease];
}

- (void)setAllowsMultipleSelection:(BOOL)flag {
  setFlag("setAllowsMultipleSelection:", flag);
}

- (void)setCanChooseFiles:(BOOL)flag {
  setFlag("setCanChooseFiles:", flag);
}

- (void)setCanChooseDirectories:(BOOL)flag {
  setFlag("setCanChooseDirectories:", flag);
}

- (void)setCanCreateDirectories:(BOOL)flag {
  setFlag("setCanCreateDirectories:", flag);
}

- (void)setTitle:(NSString*)title {
  called("setTitle:");
  openPanel().title = textOf(title);
}

- (void)setDirectoryURL:(NSURL*)url {
  called("setDirectoryURL:");
  openPanel().hasDirectory = url != nil;
}

- (NSInteger)runModal {
  called("runModal");
  return openPanel().answer;
}

- (NSArray*)URLs {
  called("URLs");
  NSMutableArray* const urls = [NSMutableArray array];
  for (const std::string& url : openPanel().urls) {
    [urls addObject:[NSURL URLWithString:[NSString stringWithUTF8String:url.c_str()]]];
  }
  return urls;
}
@end

std::unique_ptr<ClassMethodSwap> zantrio::mac_test::putOpenPanelInPlace() {
  return std::make_unique<ClassMethodSwap>([NSOpenPanel class], [RecordingOpenPanel class],
                                           @selector(openPanel));
}
