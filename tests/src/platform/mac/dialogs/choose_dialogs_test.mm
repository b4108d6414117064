#include "files/choose_dialogs.h"

#import <AppKit/AppKit.h>

#include <map>

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// The open panel's result, and its settings.
struct OpenPanelRecord {
  long result = 1;
  std::vector<std::string> urls;
  std::string raisesIn;  // a message that raises an exception

  std::map<std::string, bool> flags;
  std::string title;
  bool hasDirectory = true;
};

OpenPanelRecord panel;

void called(const std::string& message) {
  recordCall(message);
  if (panel.raisesIn == message) {
    [NSException raise:NSInternalInconsistencyException format:@"%s", message.c_str()];
  }
}

}  // namespace

// A setter of a flag, recorded under its name.
#define FLAG_SETTER(name)       \
  -(void)name : (BOOL)value {   \
    called(#name ":");          \
    panel.flags[#name] = value; \
  }

@interface RecordingOpenPanel : NSObject
@end

@implementation RecordingOpenPanel
+ (id)openPanel {
  called("openPanel");
  return [[[RecordingOpenPanel alloc] init] autorelease];
}

FLAG_SETTER(setAllowsMultipleSelection)
FLAG_SETTER(setCanChooseFiles)
FLAG_SETTER(setCanChooseDirectories)
FLAG_SETTER(setCanCreateDirectories)

- (void)setTitle:(NSString*)title {
  called("setTitle:");
  panel.title = textOf(title);
}

- (void)setDirectoryURL:(NSURL*)url {
  called("setDirectoryURL:");
  panel.hasDirectory = url != nil;
}

- (NSInteger)runModal {
  called("runModal");
  return panel.result;
}

- (NSArray*)URLs {
  called("URLs");
  NSMutableArray* const urls = [NSMutableArray array];
  for (const std::string& url : panel.urls) {
    [urls addObject:[NSURL URLWithString:[NSString stringWithUTF8String:url.c_str()]]];
  }
  return urls;
}
@end

namespace zantrio::mac_test {
namespace {

using Urls = std::vector<std::string>;
using Flags = std::map<std::string, bool>;

class ChooseDialogsMac : public MacTest {
 protected:
  ChooseDialogsMac() { panel = {}; }

  const ClassMethodSwap panelInPlace_ {
    [NSOpenPanel class], [RecordingOpenPanel class], @selector(openPanel)
  };
};

TEST_F(ChooseDialogsMac, TheFilesPanelTakesSeveralFilesAndNoFolders) {
  panel.urls = {"file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"};
  const auto dialog = createFileChooseDialog();
  dialog->setTitle("Choose files");
  Urls chosen = {"before"};
  EXPECT_TRUE(dialog->show(chosen));
  EXPECT_EQ(chosen, (Urls{"before", "file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"}));
  EXPECT_EQ(calls(), (Urls{"openPanel", "setAllowsMultipleSelection:", "setCanChooseFiles:",
                           "setCanChooseDirectories:", "setTitle:", "setDirectoryURL:", "runModal",
                           "URLs"}));
  EXPECT_EQ(panel.flags, (Flags{{"setAllowsMultipleSelection", true},
                                {"setCanChooseFiles", true},
                                {"setCanChooseDirectories", false}}));
  EXPECT_EQ(panel.title, "Choose files");
  EXPECT_FALSE(panel.hasDirectory);
}

TEST_F(ChooseDialogsMac, TheFolderPanelTakesOneFolderAndMayCreateIt) {
  panel.urls = {"file:///tmp/folder/"};
  Urls chosen;
  EXPECT_TRUE(createFolderChooseDialog()->show(chosen));
  EXPECT_EQ(chosen, (Urls{"file:///tmp/folder/"}));
  EXPECT_EQ(panel.flags, (Flags{{"setAllowsMultipleSelection", false},
                                {"setCanChooseFiles", false},
                                {"setCanChooseDirectories", true},
                                {"setCanCreateDirectories", true}}));
}

TEST_F(ChooseDialogsMac, EveryResultButOkAndAnEmptyChoiceLeaveTheListUnchanged) {
  Urls chosen = {"before"};
  for (const long result : {0L, -1L, 2L, 1000L}) {
    panel.result = result;
    panel.urls = {"file:///tmp/a"};
    EXPECT_FALSE(createFileChooseDialog()->show(chosen)) << result;
  }
  panel = {};
  EXPECT_FALSE(createFolderChooseDialog()->show(chosen));
  EXPECT_EQ(chosen, Urls{"before"});
}

TEST_F(ChooseDialogsMac, AnExceptionAtAnyStepCancels) {
  for (const char* step : {"openPanel", "setAllowsMultipleSelection:", "setCanChooseFiles:",
                           "setCanChooseDirectories:", "setCanCreateDirectories:", "setTitle:",
                           "setDirectoryURL:", "runModal", "URLs"}) {
    calls().clear();
    panel = {};
    panel.urls = {"file:///tmp/folder/"};
    panel.raisesIn = step;
    Urls chosen;
    EXPECT_FALSE(createFolderChooseDialog()->show(chosen)) << step;
    EXPECT_TRUE(chosen.empty());
    EXPECT_EQ(calls().back(), step) << "raised, and nothing was logged";
  }
}

}  // namespace
}  // namespace zantrio::mac_test
