// Input methods: text that is composed in off-screen pages.
#include <gtest/gtest.h>

#include "support/framework.h"
#include "support/screen.h"

namespace cef_test {
namespace {

constexpr char kFields[] = R"(<style>body { margin: 0; font: 16px monospace }
  input { position: absolute; left: 20px; width: 200px; height: 24px; border: 0; padding: 0;
    font: inherit }
  #field { top: 30px } #mail { top: 60px } #secret { top: 90px }</style>
  <input id=field><input id=mail type=email><input id=secret type=password><script>seen = [];
  for (const name of ['compositionstart', 'compositionupdate', 'compositionend'])
    addEventListener(name, event => seen.push(name.slice(11) + ' ' + event.data));
  </script>)";

const CefRange kNone(UINT32_MAX, UINT32_MAX);

class OffScreenTextInput : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(page().becomes("document.readyState", "complete"));
    ASSERT_TRUE(runUntil([&] { return !screen().paints.empty(); }));
    focus("field", 40);
  }

  Screen& screen() { return shown_.screen(); }
  TestBrowser& page() { return shown_.page(); }
  CefRefPtr<CefBrowserHost> host() { return shown_.host(); }

  void focus(const std::string& id, int y) {
    shown_.click(200, y);
    ASSERT_TRUE(page().becomes("document.activeElement.id", id));
  }
  void compose(const std::string& text, uint32_t caret) {
    const CefCompositionUnderline underline{{0, static_cast<uint32_t>(text.size())}};
    host()->ImeSetComposition(text, {underline}, kNone, CefRange(caret, caret));
  }

  OffScreenPage shown_{kFields};
};

TEST_F(OffScreenTextInput, TellsTheClientOfTheFocusedFieldAndItsCaret) {
  // The caret is as high as the font, in the field.
  const auto tells = [&](cef_text_input_mode_t mode, int x, int top) {
    const CefRect& caret = screen().caret;
    const bool told = runUntil([&] {
      return screen().textMode == mode && caret.x == x && caret.y >= top && caret.height > 10 &&
             caret.y + caret.height <= top + 24;
    });
    return testing::AssertionResult(told)
           << "mode " << screen().textMode << " caret " << caret.x << "," << caret.y << " "
           << caret.width << "x" << caret.height;
  };
  EXPECT_TRUE(tells(CEF_TEXT_INPUT_MODE_TEXT, 20, 30));
  const int width = std::stoi(page().evaluate(
      "(canvas => { canvas.font = '16px monospace'; return Math.round(canvas.measureText('ab')"
      ".width); })(document.createElement('canvas').getContext('2d'))"));
  compose("ab", 2);
  EXPECT_TRUE(tells(CEF_TEXT_INPUT_MODE_TEXT, 20 + width, 30));
  host()->ImeFinishComposingText(false);
  ASSERT_TRUE(page().becomes("seen.at(-1)", "end ab"));
  page().run("field.select()");
  EXPECT_TRUE(runUntil([&] { return screen().selectedText == "ab"; }));
  EXPECT_EQ(screen().selection, CefRange(0, 2));

  focus("mail", 70);
  EXPECT_TRUE(tells(CEF_TEXT_INPUT_MODE_EMAIL, 20, 60));
  page().run("mail.style.left = '50px'");
  EXPECT_TRUE(tells(CEF_TEXT_INPUT_MODE_EMAIL, 50, 60));
  focus("secret", 100);
  EXPECT_TRUE(runUntil([&] { return screen().textMode == CEF_TEXT_INPUT_MODE_NONE; }));
  screen().scale = 2;
  host()->NotifyScreenInfoChanged();
  ASSERT_TRUE(page().becomes("innerWidth + ' ' + devicePixelRatio", "300 2"));
  ASSERT_TRUE(runUntil([&] { return screen().pictureSize == CefSize(600, 400); }));
  focus("mail", 70);
  EXPECT_TRUE(tells(CEF_TEXT_INPUT_MODE_EMAIL, 50, 60));
  page().run("document.activeElement.blur()");
  EXPECT_TRUE(runUntil([&] { return screen().textMode == CEF_TEXT_INPUT_MODE_NONE; }));
}

}  // namespace
}  // namespace cef_test
