#include "osr/input/interpreted_keys.h"

#include <gmock/gmock.h>

#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;

class InterpretedKeysTest : public testing::Test {
 protected:
  InterpretedKeysTest() { view_.text.setMode(CEF_TEXT_INPUT_MODE_TEXT); }

  // Gives what the browser got of a press of which the input method makes this.
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

TEST_F(InterpretedKeysTest, AreKeysAsOthersWhenTheyTypeOneCharacterOrNone) {
  EXPECT_THAT(press([&] { presses_.insert(u"x", std::nullopt); }),
              ElementsAre("raw down 0/14 types 120 flags 0", "char 0/14 types 120 flags 0"));
  EXPECT_THAT(press([&] { presses_.command(); }),
              ElementsAre("raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
  view_.text.setMode(CEF_TEXT_INPUT_MODE_NONE);
  EXPECT_THAT(press([] { FAIL() << "nothing takes text"; }),
              ElementsAre("raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
}

TEST_F(InterpretedKeysTest, AreUsedUpByWhatIsComposed) {
  const std::string used = "raw down 229/14 types 0 flags 0";
  EXPECT_THAT(press([&] { mark(u"\u00b4"); }),
              ElementsAre(used, "compose '\u00b4' selected 0-0 for none"));
  EXPECT_THAT(press([] {}), ElementsAre(used));  // as when a proposal is chosen
  EXPECT_THAT(press([&] { presses_.insert(u"\u00e9", std::nullopt); }),
              ElementsAre(used, "commit '\u00e9' for none"));
  EXPECT_THAT(press([&] {
                presses_.insert(u"ab", CefRange(1, 2));
                mark(u"c");
              }),
              ElementsAre(used, "commit 'ab' for 1-2", "compose 'c' selected 0-0 for none"));
  // A key that ends the composition and moves the caret.
  EXPECT_THAT(
      press([&] {
        presses_.unmark();
        presses_.command();
      }),
      ElementsAre("finish", "raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"));
}

TEST_F(InterpretedKeysTest, AreNotNeededForText) {
  mark(u"a");
  presses_.unmark();
  presses_.insert(u"\U0001F600", CefRange(0, 1));
  presses_.command();
  EXPECT_THAT(view_.host->lines, ElementsAre("compose 'a' selected 0-0 for none", "finish",
                                             "commit '\U0001F600' for 0-1"));
}

}  // namespace
}  // namespace client::test
