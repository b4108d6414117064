#import <AppKit/AppKit.h>

#include "files/choose_dialogs.h"
#include "platform/mac/dialogs/message_dialogs.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// The open panel's result.
struct OpenPanelRecord {
  long result = 1;
  std::vector<std::string> urls;
  std::string raisesIn;  // a message that raises an exception
};

OpenPanelRecord panel;

void called(const std::string& message, const std::string& argument = "") {
  recordCall(message + argument);
  if (panel.raisesIn == message) {
    [NSException raise:NSInternalInconsistencyException format:@"%s", message.c_str()];
  }
}

}  // namespace

#define FLAG_SETTER(name)                  \
  -(void)name : (BOOL)value {              \
    called(#name, value ? " yes" : " no"); \
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
  called("setTitle ", textOf(title));
}

- (void)setDirectoryURL:(NSURL*)url {
  called("setDirectoryURL ", textOf([url absoluteString]));
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

using Texts = std::vector<std::string>;

class ChooseDialogsMac : public MacTest {
 protected:
  ChooseDialogsMac() { panel = {}; }

  const ClassMethodSwap panelInPlace_ {
    [NSOpenPanel class], [RecordingOpenPanel class], @selector(openPanel)
  };
};

TEST_F(ChooseDialogsMac, TakeSeveralFilesOrOneFolder) {
  panel.urls = {"file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"};
  const auto dialog = createFileChooseDialog();
  dialog->setTitle("Choose files");
  Texts chosen = {"before"};
  EXPECT_TRUE(dialog->show(chosen));
  EXPECT_EQ(chosen, (Texts{"before", "file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"}));
  EXPECT_EQ(calls(), (Texts{"openPanel", "setAllowsMultipleSelection yes", "setCanChooseFiles yes",
                            "setCanChooseDirectories no", "setTitle Choose files",
                            "setDirectoryURL (null)", "runModal", "URLs"}));
  calls().clear();
  EXPECT_TRUE(createFolderChooseDialog()->show(chosen));
  EXPECT_EQ(calls(), (Texts{"openPanel", "setAllowsMultipleSelection no", "setCanChooseFiles no",
                            "setCanChooseDirectories yes", "setCanCreateDirectories yes",
                            "setTitle ", "setDirectoryURL (null)", "runModal", "URLs"}));
}

TEST_F(ChooseDialogsMac, AreCancelledByOtherResultsNoChoiceAndExceptionsAtAnyStep) {
  Texts chosen = {"before"};
  EXPECT_FALSE(createFolderChooseDialog()->show(chosen));
  for (const long result : {0L, -1L, 2L, 1000L}) {
    panel.result = result;
    panel.urls = {"file:///tmp/a"};
    EXPECT_FALSE(createFileChooseDialog()->show(chosen)) << result;
  }
  panel.result = 1;
  for (const char* step : {"openPanel", "setCanCreateDirectories", "runModal", "URLs"}) {
    calls().clear();
    panel.raisesIn = step;
    EXPECT_FALSE(createFolderChooseDialog()->show(chosen)) << step;
    EXPECT_TRUE(calls().back().starts_with(step)) << "raised, and nothing was logged";
  }
  EXPECT_EQ(chosen, Texts{"before"});
}

using MessageDialogsMac = MacTest;

TEST_F(MessageDialogsMac, ShowTheirTextInMacRoman) {
  createAlertDialog()->show("Zo\xC3\xAB");
  EXPECT_EQ(calls(), Texts{"notice of level 3 '' 'Zo\u221A\u00B4' button (null)"});
  const std::pair<int, CFOptionFlags> levels[] = {{0, kCFUserNotificationCautionAlertLevel},
                                                  {1, kCFUserNotificationStopAlertLevel},
                                                  {2, kCFUserNotificationPlainAlertLevel},
                                                  {7, kCFUserNotificationStopAlertLevel}};
  for (const auto& [kind, level] : levels) {
    EXPECT_TRUE(createConfirmDialog()->ask("Zo\xC3\xAB", kind));
    EXPECT_EQ(calls().back(), "question of level " + std::to_string(level) +
                                  " '' 'Zo\u221A\u00B4' buttons Yes, No");
  }
}

TEST_F(MessageDialogsMac, TakeOnlyTheDefaultButtonAndAQuestionThatCannotBeShownAsYes) {
  for (const CFOptionFlags response : {0, 1, 2, 3}) {
    fakeSystem().response = response;
    EXPECT_EQ(createConfirmDialog()->ask("?", 0), response == kCFUserNotificationDefaultResponse);
  }
  fakeSystem().showsQuestions = false;
  EXPECT_TRUE(createConfirmDialog()->ask("?", 0));
}

}  // namespace
}  // namespace zantrio::mac_test
