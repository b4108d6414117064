// Keys, the text of input methods, and presses that an input method sees first.
#include <gmock/gmock.h>

#include "osr/input/interpreted_keys.h"
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
  for (const char16_t* const none : {u"", u"\uF700", u"\uF8FF"}) {
    lines().clear();
    press_.characters = none;
    keys_.sendKeyDown(press_);
    EXPECT_EQ(lines().size(), 1u);
  }
  view_.hasBrowser = false;
  keys_.sendKeyUp(press_);
  runEditCommand(view_, EditCommand::kCut);
}

TEST_F(KeyInputTest, CommitsTextThatExceedsAKeyEvent) {
  press_.characters = u"\U0001F600";
  keys_.sendKeyDown(press_);
  EXPECT_THAT(lines(),
              ElementsAre("raw down 65/38 types 0 flags 2", "commit '\U0001F600' for none"));
}

TEST_F(KeyInputTest, DistinguishesPressesAndReleasesOfModifierKeysByTheirState) {
  press_.kind = EventKind::kFlagsChanged;
  press_.keyCode = 56;
  keys_.sendFlagsChanged(press_);
  press_.modifiers = 0;
  keys_.sendFlagsChanged(press_);
  EXPECT_THAT(lines(), ElementsAre("raw down 65/56 types 0 flags 2", "up 65/56 types 0 flags 0"));
}

TEST_F(KeyInputTest, RunsEditCommandsInTheFocusedFrame) {
  for (const EditCommand command :
       {EditCommand::kUndo, EditCommand::kRedo, EditCommand::kCut, EditCommand::kCopy,
        EditCommand::kPaste, EditCommand::kDelete, EditCommand::kSelectAll}) {
    runEditCommand(view_, command);
  }
  EXPECT_THAT(view_.fakeBrowser->frame->edits,
              ElementsAre("undo", "redo", "cut", "copy", "paste", "delete", "select all"));
  view_.fakeBrowser->frame = nullptr;
  runEditCommand(view_, EditCommand::kUndo);
}

class TextInputTest : public testing::Test {
 protected:
  std::vector<std::string>& lines() { return view_.host->lines; }

  FakeOsrView view_;
  TextInput& text_ = view_.text;
};

TEST_F(TextInputTest, ForwardsCompositionsUntilTheyAreFinishedOrCancelled) {
  CefCompositionUnderline chosen;
  chosen.range = CefRange(1, 2);
  chosen.thick = 1;
  text_.compose(u"ni", {chosen}, CefRange(2, 2));
  EXPECT_EQ(text_.composedRange(), CefRange(0, 2));
  text_.commit(u"\u4f60", CefRange(3, 5));
  text_.compose(u"a", {}, CefRange(1, 1), CefRange(0, 4));
  text_.finish();
  text_.compose(u"b", {}, CefRange(0, 0));
  text_.cancel();
  text_.compose(u"c", {}, CefRange(0, 0));
  text_.compose(u"", {}, CefRange(0, 0));
  EXPECT_THAT(lines(), ElementsAre("compose 'ni' thick 1-2 selected 2-2 for none",
                                   "commit '\u4f60' for 3-5", "compose 'a' selected 1-1 for 0-4",
                                   "finish", "compose 'b' selected 0-0 for none", "cancel",
                                   "compose 'c' selected 0-0 for none", "cancel"));
  lines().clear();
  text_.finish();  // the composition has ended
  text_.cancel();
  view_.hasBrowser = false;
  text_.compose(u"d", {}, CefRange(0, 0));
  text_.commit(u"e");
  EXPECT_FALSE(text_.isComposing());
  EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TextInputTest, EndsTheCompositionWhenTheFieldLosesTheFocus) {
  text_.setMode(CEF_TEXT_INPUT_MODE_TEXT);
  text_.compose(u"ni", {}, CefRange(2, 2));
  text_.setMode(CEF_TEXT_INPUT_MODE_TEXT);
  EXPECT_TRUE(text_.isComposing());
  text_.setMode(CEF_TEXT_INPUT_MODE_NONE);
  EXPECT_FALSE(text_.isComposing());
}

TEST_F(TextInputTest, StoresTheFocusedFieldsState) {
  EXPECT_FALSE(text_.acceptsText());
  EXPECT_TRUE(text_.boundsOf(0).IsEmpty());
  text_.setMode(CEF_TEXT_INPUT_MODE_EMAIL);
  text_.setSelection("b", CefRange(1, 2));
  text_.setCharacterBounds({{10, 20, 5, 16}, {15, 20, 7, 16}});
  EXPECT_TRUE(text_.acceptsText());
  EXPECT_EQ(text_.selectedText().ToString(), "b");
  EXPECT_EQ(text_.selectedRange(), CefRange(1, 2));
  EXPECT_EQ(text_.boundsOf(0), CefRect(10, 20, 5, 16));
  EXPECT_EQ(text_.boundsOf(1), CefRect(15, 20, 7, 16));
  EXPECT_EQ(text_.boundsOf(9), CefRect(15, 20, 7, 16));
  EXPECT_THAT(view_.lines,
              ElementsAre("text input changed", "text input changed", "text input changed"));
}

class InterpretedKeysTest : public testing::Test {
 protected:
  InterpretedKeysTest() { view_.text.setMode(CEF_TEXT_INPUT_MODE_TEXT); }

  // Returns the events of a press with this reaction of the input method.
  std::vector<std::string> press(const std::function<void()>& interpret) {
    SystemEvent event;
    event.kind = EventKind::kKeyDown;
    event.keyCode = 14;
    event.characters.assign(1, u'e');
    view_.host->lines.clear();
    presses_.press(event, interpret);
    return view_.host->lines;
  }
  void mark(const std::u16string& text) { presses_.mark(text, {}, CefRange(0, 0), std::nullopt); }

  FakeOsrView view_;
  KeyInput keys_{view_};
  InterpretedKeys presses_{keys_, view_.text};
};

TEST_F(InterpretedKeysTest, AreOrdinaryKeysIfTheyInsertOneCharacterOrNone) {
  EXPECT_THAT(press([&] { presses_.insert(u"x", std::nullopt); }),
              ElementsAre("raw down 0/14 types 120 flags 0", "char 0/14 types 120 flags 0"));
  EXPECT_THAT(press([&] { presses_.command(); }),
              ElementsAre("raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
  view_.text.setMode(CEF_TEXT_INPUT_MODE_NONE);
  EXPECT_THAT(press([] { FAIL() << "nothing takes text"; }),
              ElementsAre("raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
}

TEST_F(InterpretedKeysTest, AreConsumedByCompositions) {
  const std::string consumed = "raw down 229/14 types 0 flags 0";
  EXPECT_THAT(press([&] { mark(u"\u00b4"); }),
              ElementsAre(consumed, "compose '\u00b4' selected 0-0 for none"));
  EXPECT_THAT(press([] {}), ElementsAre(consumed));  // as when a candidate is chosen
  EXPECT_THAT(press([&] {
                mark(u"e");
                presses_.insert(u"\u00e9", std::nullopt);
              }),
              ElementsAre(consumed, "commit '\u00e9' for none"));
  EXPECT_THAT(press([&] {
                presses_.insert(u"ab", CefRange(1, 2));
                mark(u"c");
              }),
              ElementsAre(consumed, "commit 'ab' for 1-2", "compose 'c' selected 0-0 for none"));
  // A key that ends the composition and moves the caret.
  EXPECT_THAT(
      press([&] {
        presses_.unmark();
        presses_.command();
      }),
      ElementsAre("finish", "raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
}

TEST_F(InterpretedKeysTest, AreNotRequiredForText) {
  mark(u"a");
  presses_.unmark();
  presses_.insert(u"\U0001F600", CefRange(0, 1));
  presses_.command();
  EXPECT_THAT(view_.host->lines, ElementsAre("compose 'a' selected 0-0 for none", "finish",
                                             "commit '\U0001F600' for 0-1"));
}

}  // namespace
}  // namespace client::test
