#include "osr/input/key_input.h"

#include <gmock/gmock.h>

#include "osr/input/edit_commands.h"
#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeyInputTest : public testing::Test {
 protected:
  KeyInputTest() {
    press_.kind = EventKind::kKeyDown;
    press_.modifiers = kShift;
    press_.characters = u"A";
    press_.charactersIgnoringModifiers = u"a";
    press_.windowsKeyCode = 65;
    press_.nativeKeyCode = 38;
  }
  std::vector<std::string>& lines() { return view_.host->lines; }

  FakeOsrView view_;
  KeyInput keys_{view_};
  SystemEvent press_;
};

TEST_F(KeyInputTest, SendsAPressWithTheCharacterThatItTypesAndARelease) {
  keys_.sendKeyDown(press_);
  SystemEvent release = press_;
  release.kind = EventKind::kKeyUp;
  keys_.sendKeyUp(release);
  EXPECT_THAT(lines(), ElementsAre("raw down 65/38 types 65 flags 2", "char 65/38 types 65 flags 2",
                                   "up 65/38 types 65 flags 2"));
}

TEST_F(KeyInputTest, SendsNoCharacterOfKeysThatTypeNone) {
  for (const char16_t* const none : {u"", u"\uF700", u"\uF8FF"}) {
    lines().clear();
    press_.characters = none;
    keys_.sendKeyDown(press_);
    EXPECT_EQ(lines().size(), 1u);
  }
}

TEST_F(KeyInputTest, CommitsTextThatDoesNotFitInAKey) {
  press_.characters = u"\U0001F600";
  press_.charactersIgnoringModifiers = press_.characters;
  keys_.sendKeyDown(press_);
  press_.kind = EventKind::kKeyUp;
  keys_.sendKeyUp(press_);
  EXPECT_THAT(lines(), ElementsAre("raw down 65/38 types 0 flags 2", "commit '\U0001F600' for none",
                                   "up 65/38 types 0 flags 2"));
}

TEST_F(KeyInputTest, TellsPressesAndReleasesOfModifierKeysByTheStateAfterThem) {
  press_.kind = EventKind::kFlagsChanged;
  press_.keyCode = 56;
  keys_.sendFlagsChanged(press_);
  press_.modifiers = 0;
  keys_.sendFlagsChanged(press_);
  EXPECT_THAT(lines(), ElementsAre("raw down 65/56 types 0 flags 2", "up 65/56 types 0 flags 0"));
}

TEST_F(KeyInputTest, SendsNothingWithoutABrowser) {
  view_.hasBrowser = false;
  keys_.sendKeyDown(press_);
  keys_.sendKeyUp(press_);
  runEditCommand(view_, EditCommand::kCut);
  EXPECT_THAT(lines(), IsEmpty());
  EXPECT_THAT(view_.fakeBrowser->frame->edits, IsEmpty());
}

TEST(EditCommands, ReachTheFocusedFrame) {
  FakeOsrView view;
  for (const EditCommand command :
       {EditCommand::kUndo, EditCommand::kRedo, EditCommand::kCut, EditCommand::kCopy,
        EditCommand::kPaste, EditCommand::kDelete, EditCommand::kSelectAll}) {
    runEditCommand(view, command);
  }
  EXPECT_THAT(view.fakeBrowser->frame->edits,
              ElementsAre("undo", "redo", "cut", "copy", "paste", "delete", "select all"));
  view.fakeBrowser->frame = nullptr;
  runEditCommand(view, EditCommand::kUndo);
}

}  // namespace
}  // namespace client::test
