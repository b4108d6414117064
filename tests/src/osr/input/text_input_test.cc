#include "osr/input/text_input.h"

#include <gmock/gmock.h>

#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TextInputTest : public testing::Test {
 protected:
  std::vector<std::string>& lines() { return view_.host->lines; }

  FakeOsrView view_;
  TextInput& text_ = view_.text;
};

TEST_F(TextInputTest, HandsOnWhatIsComposedUntilItIsFinishedOrTakenBack) {
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
  text_.finish();  // there is none any more
  text_.cancel();
  view_.hasBrowser = false;
  text_.compose(u"d", {}, CefRange(0, 0));
  text_.commit(u"e");
  EXPECT_FALSE(text_.isComposing());
  EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(TextInputTest, ForgetsTheCompositionOfAFieldThatLostTheFocus) {
  text_.setMode(CEF_TEXT_INPUT_MODE_TEXT);
  text_.compose(u"ni", {}, CefRange(2, 2));
  text_.setMode(CEF_TEXT_INPUT_MODE_TEXT);
  EXPECT_TRUE(text_.isComposing());
  text_.setMode(CEF_TEXT_INPUT_MODE_NONE);
  EXPECT_FALSE(text_.isComposing());
}

TEST_F(TextInputTest, KeepsWhatTheBrowserTellsOfTheFocusedField) {
  EXPECT_FALSE(text_.isWanted());
  EXPECT_TRUE(text_.placeOf(0).IsEmpty());
  text_.setMode(CEF_TEXT_INPUT_MODE_EMAIL);
  text_.setSelection("b", CefRange(1, 2));
  text_.setPlaces({{10, 20, 5, 16}, {15, 20, 7, 16}});
  EXPECT_TRUE(text_.isWanted());
  EXPECT_EQ(text_.selectedText().ToString(), "b");
  EXPECT_EQ(text_.selectedRange(), CefRange(1, 2));
  EXPECT_EQ(text_.placeOf(0), CefRect(10, 20, 5, 16));
  EXPECT_EQ(text_.placeOf(1), CefRect(15, 20, 7, 16));
  EXPECT_EQ(text_.placeOf(9), CefRect(15, 20, 7, 16));
  EXPECT_THAT(view_.lines,
              ElementsAre("text input changed", "text input changed", "text input changed"));
}

}  // namespace
}  // namespace client::test
