#include "files/file_choose_dialog.h"
#include "files/folder_choose_dialog.h"
#include "mac/fakes/calls.h"
#include "mac/fakes/open_panel_fake.h"
#include "mac/mac_fixture.h"

namespace zantrio::mac_test {
namespace {

using Urls = std::vector<std::string>;
using Flags = std::map<std::string, bool>;

class ChooseDialogsMac : public MacTest {
 protected:
  const std::unique_ptr<ClassMethodSwap> panelInPlace_ = putOpenPanelInPlace();
};

TEST_F(ChooseDialogsMac, TheFilesPanelTakesSeveralFilesAndNoFolders) {
  openPanel().urls = {"file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"};
  const auto dialog = createFileChooseDialog();
  dialog->setTitle("Choose files");
  Urls chosen = {"before"};
  EXPECT_TRUE(dialog->show(chosen));

  EXPECT_EQ(chosen, (Urls{"before", "file:///tmp/a%20b.txt", "file:///tmp/Zo%C3%AB"}));
  EXPECT_EQ(openPanel().flags, (Flags{{"setAllowsMultipleSelection:", true},
                                      {"setCanChooseFiles:", true},
                                      {"setCanChooseDirectories:", false}}));
  EXPECT_EQ(openPanel().title, "Choose files");
  EXPECT_FALSE(openPanel().hasDirectory);
}

TEST_F(ChooseDialogsMac, TheFolderPanelTakesOneFolderAndMayMakeIt) {
  openPanel().urls = {"file:///tmp/folder/"};
  const auto dialog = createFolderChooseDialog();
  dialog->setTitle("Choose folder");
  Urls chosen;
  EXPECT_TRUE(dialog->show(chosen));

  EXPECT_EQ(chosen, (Urls{"file:///tmp/folder/"}));
  EXPECT_EQ(openPanel().flags, (Flags{{"setAllowsMultipleSelection:", false},
                                      {"setCanChooseFiles:", false},
                                      {"setCanChooseDirectories:", true},
                                      {"setCanCreateDirectories:", true}}));
  EXPECT_EQ(openPanel().title, "Choose folder");
  EXPECT_FALSE(openPanel().hasDirectory);
}

TEST_F(ChooseDialogsMac, SetsThePanelUpBeforeItRuns) {
  openPanel().urls = {"file:///tmp/a"};
  Urls chosen;
  createFileChooseDialog()->show(chosen);
  EXPECT_EQ(calls(), (Urls{"openPanel", "setAllowsMultipleSelection:", "setCanChooseFiles:",
                           "setCanChooseDirectories:", "setTitle:", "setDirectoryURL:", "runModal",
                           "URLs"}));
}

TEST_F(ChooseDialogsMac, EveryAnswerButOkAndAnEmptyChoiceLeaveTheListAsItWas) {
  const Urls before = {"before"};
  for (const long answer : {0L, -1L, 2L, 1000L}) {
    openPanel() = {};
    openPanel().answer = answer;
    openPanel().urls = {"file:///tmp/a"};
    Urls chosen = before;
    EXPECT_FALSE(createFileChooseDialog()->show(chosen)) << answer;
    EXPECT_EQ(chosen, before);
  }
  openPanel() = {};
  Urls chosen = before;
  EXPECT_FALSE(createFolderChooseDialog()->show(chosen));
  EXPECT_EQ(chosen, before);
}

TEST_F(ChooseDialogsMac, AnExceptionAtAnyStepIsTheSameAsACancel) {
  for (const char* step : {"openPanel", "setAllowsMultipleSelection:", "setCanChooseFiles:",
                           "setCanChooseDirectories:", "setCanCreateDirectories:", "setTitle:",
                           "setDirectoryURL:", "runModal", "URLs"}) {
    calls().clear();
    openPanel() = {};
    openPanel().urls = {"file:///tmp/folder/"};
    openPanel().raisesIn = step;
    Urls chosen;
    EXPECT_FALSE(createFolderChooseDialog()->show(chosen)) << step;
    EXPECT_TRUE(chosen.empty());
    EXPECT_EQ(calls().back(), step) << "raised, and nothing was logged";
  }
}

}  // namespace
}  // namespace zantrio::mac_test
