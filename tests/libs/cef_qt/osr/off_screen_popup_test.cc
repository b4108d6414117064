// Lists of choices of off-screen pages, which are windows of their own for the engine.
#include <gtest/gtest.h>

#include "support/framework.h"
#include "support/screen.h"

namespace cef_test {
namespace {

constexpr char kTwoLists[] = R"(<style>body { margin: 0; background: #ffffff }
  select { position: absolute; left: 20px; width: 120px; height: 24px }
  #list { top: 10px } #other { top: 100px }</style>
  <select id=list><option>one<option>two<option>three</select>
  <select id=other><option>x<option>y</select>)";

constexpr int kTurns = 200;

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

// The page closes a list on which is pressed, opens it again, and closes that one: nobody is told
// of the second one.
TEST_F(OffScreenPopup, OpensAgainRightAfterItClosedTimeAndAgain) {
  for (int turn = 0; turn < kTurns; ++turn) {
    SCOPED_TRACE("turn " + std::to_string(turn));
    open();
    ASSERT_TRUE(opens());
    ASSERT_TRUE(screen().popupShown) << "closed by itself";
    const int row = turn % 3;
    switch (turn % 4) {
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
    EXPECT_EQ(screen().popupCount, turn + 1);
  }
}

TEST_F(OffScreenPopup, IsToldAsGoneBeforeAnotherListOpens) {
  open();
  ASSERT_TRUE(opens());
  const CefRect first = screen().popupRect;
  shown_.click(40, 110);
  EXPECT_TRUE(runUntil([&] { return screen().popupShown && screen().popupRect.y != first.y; }));
  EXPECT_EQ(screen().popupCount, 2);
}

}  // namespace
}  // namespace cef_test
