// Pop-up lists of off-screen pages.
#include <gtest/gtest.h>

#include <chrono>

#include "support/framework.h"
#include "support/screen.h"

namespace cef_test {
namespace {

constexpr char kTwoLists[] = R"(<style>body { margin: 0; background: #ffffff }
  select { position: absolute; left: 20px; width: 120px; height: 24px }
  #list { top: 10px } #other { top: 100px }</style>
  <select id=list><option>one<option>two<option>three</select>
  <select id=other><option>x<option>y</select>)";

// The race needs many repetitions. A slow machine does fewer, but closes the list in each way and
// at each row.
constexpr int kMaxWalks = 200;
constexpr int kMinWalks = 12;
constexpr std::chrono::seconds kWalkTime{40};

class OffScreenPopup : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(page().becomes("list.value", "one"));
    ASSERT_TRUE(runUntil([&] { return !screen().paints.empty(); }));
  }

  Screen& screen() { return shown_.screen(); }
  TestBrowser& page() { return shown_.page(); }

  bool opens() {
    return runUntil([&] { return screen().popupShown && !screen().popupPaints.empty(); });
  }
  bool closes() {
    return runUntil([&] { return !screen().popupShown; });
  }
  void open() {
    screen().popupPaints.clear();
    shown_.click(40, 20);
  }

  OffScreenPage shown_{kTwoLists};
};

TEST_F(OffScreenPopup, IsPaintedBelowItsFieldAndTakesClicks) {
  open();
  ASSERT_TRUE(opens());
  const CefRect rect = screen().popupRect;
  EXPECT_EQ(rect.x, 20);
  EXPECT_EQ(rect.y, 34);
  EXPECT_GE(rect.width, 120);
  EXPECT_EQ(screen().popupPaints.back().width, rect.width);
  EXPECT_EQ(screen().popupPaints.back().height, rect.height);
  const auto before = screen().popupPaints.size();
  shown_.host()->Invalidate(PET_POPUP);
  EXPECT_EQ(screen().popupPaints.size(), before + 1);
  shown_.click(40, 34 + rect.height / 2);
  EXPECT_TRUE(page().becomes("list.value", "two"));
  EXPECT_TRUE(closes());

  // The client hears that a list is gone before another one opens.
  open();
  ASSERT_TRUE(opens());
  shown_.click(40, 110);
  EXPECT_TRUE(runUntil([&] { return screen().popupShown && screen().popupRect.y != rect.y; }));
  EXPECT_EQ(screen().popupCount, 3);
}

TEST_F(OffScreenPopup, TakesTheChoiceUnderWhichTheButtonIsReleased) {
  screen().popupPaints.clear();
  shown_.move(40, 20);
  shown_.press(40, 20);
  ASSERT_TRUE(opens());
  const int middle = 34 + screen().popupRect.height / 2;
  shown_.move(42, 30, EVENTFLAG_LEFT_MOUSE_BUTTON);
  shown_.move(44, middle, EVENTFLAG_LEFT_MOUSE_BUTTON);
  shown_.release(44, middle);
  EXPECT_TRUE(page().becomes("list.value", "two"));
  EXPECT_TRUE(closes());
  // The page has no button pressed any more.
  open();
  ASSERT_TRUE(opens());
  shown_.click(40, 36);
  EXPECT_TRUE(page().becomes("list.value", "one"));
}

// On a press on its list, the page closes the list, opens it again and closes it at once. The
// client must not hear of the second one.
TEST_F(OffScreenPopup, OpensAgainRightAfterItClosed) {
  const auto deadline = std::chrono::steady_clock::now() + kWalkTime;
  for (int walk = 0;
       walk < kMinWalks || (walk < kMaxWalks && std::chrono::steady_clock::now() < deadline);
       ++walk) {
    SCOPED_TRACE("walk " + std::to_string(walk));
    open();
    ASSERT_TRUE(opens());
    ASSERT_TRUE(screen().popupShown) << "closed by itself";
    const int row = walk % 3;
    switch (walk % 4) {
      case 0:
        shown_.type(0, 0x1b);  // escape
        break;
      case 1:
        shown_.click(40, 20);
        break;
      case 2:
        shown_.click(250, 180);
        break;
      default:
        shown_.click(40, 34 + screen().popupRect.height * (2 * row + 1) / 6);
    }
    ASSERT_TRUE(closes());
    EXPECT_EQ(screen().popupCount, walk + 1);
  }
}

}  // namespace
}  // namespace cef_test
