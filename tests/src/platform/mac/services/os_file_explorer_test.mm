#include "services/os_file_explorer.h"

#import <AppKit/AppKit.h>

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/fakes/system_services_fake.h"
#include "src/platform/mac/mac_fixture.h"

namespace {

// The calls of the shared workspace, and its results.
struct WorkspaceRecord {
  std::string openedUrl;
  bool raises = false;
  bool opens = true;
};

WorkspaceRecord workspace;

}  // namespace

@interface RecordingWorkspace : NSObject
@end

@implementation RecordingWorkspace
+ (id)sharedWorkspace {
  return [[[RecordingWorkspace alloc] init] autorelease];
}

- (BOOL)openURL:(NSURL*)url {
  workspace.openedUrl = zantrio::mac_test::textOf([url absoluteString]);
  if (workspace.raises) {
    [NSException raise:NSGenericException format:@"workspace"];
  }
  return workspace.opens;
}
@end

namespace zantrio::mac_test {
namespace {

class OsFileExplorerMac : public MacTest {
 protected:
  OsFileExplorerMac() { workspace = {}; }

  const ClassMethodSwap workspaceInPlace_ {
    [NSWorkspace class], [RecordingWorkspace class], @selector(sharedWorkspace)
  };
};

TEST_F(OsFileExplorerMac, OpensFoldersThroughTheWorkspaceAndIgnoresItsResult) {
  EXPECT_TRUE(createOsFileExplorer()->openFolder("/nowhere/My Fil\xC3\xABs"));
  EXPECT_EQ(workspace.openedUrl, "file:///nowhere/My%20Fil%C3%ABs/");
  workspace.opens = false;
  EXPECT_TRUE(createOsFileExplorer()->openFolder("/nowhere"));
}

TEST_F(OsFileExplorerMac, OpensAsciiUrlsThroughLaunchServicesAndIgnoresItsResult) {
  EXPECT_TRUE(createOsFileExplorer()->openURL("https://example.org/a%20b?c=d#e"));
  EXPECT_EQ(systemServices().openedUrl, "https://example.org/a%20b?c=d#e");
  EXPECT_EQ(coreFoundation().encodings, std::vector<CFStringEncoding>{kCFStringEncodingASCII});
  EXPECT_EQ(calls(), std::vector<std::string>{"LSOpenCFURLRef"});
  systemServices().launchResult = -10814;
  EXPECT_TRUE(createOsFileExplorer()->openURL("unknown:thing"));
  for (const char* invalid : {"", "https://example.org/Zo\xC3\xAB"}) {
    systemServices().openedUrl.clear();
    EXPECT_TRUE(createOsFileExplorer()->openURL(invalid)) << invalid;
    EXPECT_EQ(systemServices().openedUrl, "(null)") << invalid;
  }
}

TEST_F(OsFileExplorerMac, ReportsExceptionsOfTheSystemAsFailures) {
  workspace.raises = true;
  EXPECT_FALSE(createOsFileExplorer()->openFolder("/nowhere"));
  systemServices().launchServicesRaise = true;
  EXPECT_FALSE(createOsFileExplorer()->openURL("https://example.org/"));
}

}  // namespace
}  // namespace zantrio::mac_test
