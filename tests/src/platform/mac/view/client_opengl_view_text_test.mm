// The view as the client of an input method, which the test plays.
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/view/view_fixture.h"

#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio::mac_test {
namespace {

const NSRange kNoRange = NSMakeRange(NSNotFound, 0);

class ClientOpenGLViewTextMac : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    handler()->OnVirtualKeyboardRequested(browser_, CEF_TEXT_INPUT_MODE_TEXT);
    calls().clear();
  }

  Lines press(std::function<void()> inputMethod) {
    appKit().inputMethod = std::move(inputMethod);
    [view_ keyDown:key(NSKeyDown, 14, @"e")];
    appKit().inputMethod = nullptr;
    return sent();
  }
};

TEST_F(ClientOpenGLViewTextMac, ForwardsTheInputMethodsCallsDuringAPress) {
  EXPECT_EQ(press([this] {
              [view_ setMarkedText:@"\u00b4"
                     selectedRange:NSMakeRange(1, 0)
                  replacementRange:kNoRange];
            }),
            (Lines{"raw down 229/14 types 0 flags 0",
                   "compose '\u00b4' thin 0-1 selected 1-1 for none"}));
  EXPECT_TRUE([view_ hasMarkedText]);
  EXPECT_EQ(press([this] { [view_ insertText:@"\u00e9" replacementRange:NSMakeRange(2, 3)]; }),
            (Lines{"raw down 229/14 types 0 flags 0", "commit '\u00e9' for 2-5"}));
  EXPECT_FALSE([view_ hasMarkedText]);
  const Lines ordinaryKey = {"raw down 0/14 types 101 flags 0", "char 0/14 types 101 flags 0"};
  EXPECT_EQ(press([this] { [view_ doCommandBySelector:@selector(moveLeft:)]; }), ordinaryKey);
  EXPECT_EQ(press([] { [NSException raise:@"Failure" format:@"of the input method"]; }),
            ordinaryKey);

  NSMutableAttributedString* const clauses =
      [[[NSMutableAttributedString alloc] initWithString:@"abc"] autorelease];
  [clauses addAttribute:NSUnderlineStyleAttributeName value:@1 range:NSMakeRange(0, 1)];
  [clauses addAttribute:NSUnderlineStyleAttributeName value:@2 range:NSMakeRange(1, 2)];
  [view_ setMarkedText:clauses selectedRange:NSMakeRange(1, 2) replacementRange:kNoRange];
  [view_ unmarkText];
  EXPECT_EQ(sent(), (Lines{"compose 'abc' thin 0-1 thick 1-3 selected 1-3 for none", "finish"}));
}

TEST_F(ClientOpenGLViewTextMac, ReportsThePositionOfTheText) {
  handler()->OnTextSelectionChanged(browser_, "", CefRange(4, 4));
  EXPECT_EQ([view_ markedRange].location, static_cast<NSUInteger>(NSNotFound));
  [view_ setMarkedText:@"ab" selectedRange:NSMakeRange(2, 0) replacementRange:kNoRange];
  EXPECT_TRUE(NSEqualRanges([view_ markedRange], NSMakeRange(4, 2)));
  handler()->OnImeCompositionRangeChanged(browser_, CefRange(4, 6),
                                          {{10, 20, 5, 16}, {15, 20, 7, 16}});
  const NSPoint corner = [window_ frame].origin;
  NSRange actual = kNoRange;
  const NSRect second = [view_ firstRectForCharacterRange:NSMakeRange(5, 1) actualRange:&actual];
  EXPECT_TRUE(NSEqualRects(second, NSMakeRect(corner.x + 15, corner.y + 100 - 36, 7, 16)));
  EXPECT_EQ(actual.location, 5u);

  handler()->OnTextSelectionChanged(browser_, "xyz", CefRange(1, 4));
  EXPECT_TRUE(NSEqualRanges([view_ selectedRange], NSMakeRange(1, 3)));
  const auto selected = [&](NSRange range) {
    return [[view_ attributedSubstringForProposedRange:range actualRange:nullptr] string];
  };
  EXPECT_TRUE([selected(NSMakeRange(1, 3)) isEqualToString:@"xyz"]);
  EXPECT_EQ(selected(NSMakeRange(0, 3)), nil);
}

TEST_F(ClientOpenGLViewTextMac, NotifiesTheInputMethodOfChanges) {
  handler()->OnImeCompositionRangeChanged(browser_, CefRange(0, 0), {});
  EXPECT_EQ(calls(), Lines{"places changed"});
  calls().clear();
  handler()->OnVirtualKeyboardRequested(browser_, CEF_TEXT_INPUT_MODE_NONE);
  EXPECT_EQ(calls(), (Lines{"discard marked text", "places changed"}));
}

}  // namespace
}  // namespace zantrio::mac_test
