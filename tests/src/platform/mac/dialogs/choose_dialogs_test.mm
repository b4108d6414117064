#include "files/choose_dialogs.h"

#import <AppKit/AppKit.h>

#include <map>

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// What the open panel that stands in for the system's answers, and what was set on it.
struct OpenPanel {
  long answer = 1;
  std::vector<std::string> urls;
  std::string raisesIn;  // the name of a message that raises an exception

  std::map<std::string, bool> flags;
  std::string title;
  bool hasDirectory = true;
};

OpenPanel panel;

void called(const std::string& message) {
  recordCall(message);
  if (panel.raisesIn == message) {
    [NSException raise:NSInternalInconsistencyException format:@"%s", message.c_str()];
  }
}

void setFlag(const std::string& message, BOOL value) {
  called(message);
  panel.flags[message] = value;
}

}  // namespace

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
  panel.title = textOf(title);
}

- (void)setDirectoryURL:(NSURL*)url {
  called("setDirectoryURL:");
  panel.hasDirectory = url != nil;
}

- (NSInteger)runModal {
  called("runModal");
  return panel.answer;
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

TEST_F(ChooseDialogsMac, TheFilesPanelIsSetUpToTakeSeveralFilesAndNoFoldersBeforeItRuns) {
  panel.urls = {"file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"};
  const auto dialog = createFileChooseDialog();
  dialog->setTitle("Choose files");
  Urls chosen = {"before"};
  EXPECT_TRUE(dialog->show(chosen));

  EXPECT_EQ(chosen, (Urls{"before", "file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"}));
  EXPECT_EQ(calls(), (Urls{"openPanel", "setAllowsMultipleSelection:", "setCanChooseFiles:",
                           "setCanChooseDirectories:", "setTitle:", "setDirectoryURL:", "runModal",
                           "URLs"}));
  EXPECT_EQ(panel.flags, (Flags{{"setAllowsMultipleSelection:", true},
                                {"setCanChooseFiles:", true},
                                {"setCanChooseDirectories:", false}}));
  EXPECT_EQ(panel.title, "Choose files");
  EXPECT_FALSE(panel.hasDirectory);
}

TEST_F(ChooseDialogsMac, TheFolderPanelTakesOneFolderAndMayMakeIt) {
  panel.urls = {"file:///tmp/folder/"};
  const auto dialog = createFolderChooseDialog();
  dialog->setTitle("Choose folder");
  Urls chosen;
  EXPECT_TRUE(dialog->show(chosen));

  EXPECT_EQ(chosen, (Urls{"file:///tmp/folder/"}));
  EXPECT_EQ(panel.flags, (Flags{{"setAllowsMultipleSelection:", false},
                                {"setCanChooseFiles:", false},
                                {"setCanChooseDirectories:", true},
                                {"setCanCreateDirectories:", true}}));
  EXPECT_EQ(panel.title, "Choose folder");
  EXPECT_FALSE(panel.hasDirectory);
}

TEST_F(ChooseDialogsMac, EveryAnswerButOkAndAnEmptyChoiceLeaveTheListAsItWas) {
  const Urls before = {"before"};
  for (const long answer : {0L, -1L, 2L, 1000L}) {
    panel = {};
    panel.answer = answer;
    panel.urls = {"file:///tmp/a"};
    Urls chosen = before;
    EXPECT_FALSE(createFileChooseDialog()->show(chosen)) << answer;
    EXPECT_EQ(chosen, before);
  }
  panel = {};
  Urls chosen = before;
  EXPECT_FALSE(createFolderChooseDialog()->show(chosen));
  EXPECT_EQ(chosen, before);
}

TEST_F(ChooseDialogsMac, AnExceptionAtAnyStepIsTheSameAsACancel) {
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
