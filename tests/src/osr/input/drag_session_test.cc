#include "osr/input/drag_session.h"

#include <gmock/gmock.h>

#include <functional>

#include "src/osr/view/fake_osr_view.h"

namespace client::test {
namespace {

using testing::ElementsAre;

class DragSessionTest : public testing::Test {
 protected:
  FakeOsrView view_;
  DragSession drags_{view_};
  const CefMouseEvent at_{3, 4, 2};
};

TEST_F(DragSessionTest, ForwardsADragIntoTheView) {
  drags_.entered(at_, {"text", {"/", "/no/such/file"}}, DRAG_OPERATION_COPY);
  EXPECT_EQ(view_.host->entered->GetFragmentText().ToString(), "text");
  std::vector<CefString> paths;
  view_.host->entered->GetFilePaths(paths);
  EXPECT_EQ(std::vector<std::string>(paths.begin(), paths.end()), std::vector<std::string>{"/"});
  drags_.setCurrentDragOp(DRAG_OPERATION_LINK);
  EXPECT_EQ(drags_.moved(at_, DRAG_OPERATION_EVERY), DRAG_OPERATION_LINK);
  drags_.exited();
  EXPECT_TRUE(drags_.performed(at_));
  EXPECT_THAT(view_.host->lines,
              ElementsAre("enter 3,4 flags 2 allowed 1", "over 3,4 flags 2 allowed 4294967295",
                          "leave", "drop 3,4 flags 2"));
}

TEST_F(DragSessionTest, ClearsTheOperationOfAnEarlierDrag) {
  const std::function<void()> steps[] = {[this] { drags_.entered(at_, {}, DRAG_OPERATION_COPY); },
                                         [this] { drags_.exited(); },
                                         [this] { drags_.performed(at_); }};
  for (const auto& step : steps) {
    drags_.setCurrentDragOp(DRAG_OPERATION_COPY);
    step();
    EXPECT_EQ(drags_.currentDragOp(), DRAG_OPERATION_NONE);
  }
}

TEST_F(DragSessionTest, UsesACopyOfItsOwnDragsData) {
  const CefRefPtr<CefDragData> own = CefDragData::Create();
  own->SetLinkURL("http://127.0.0.1/");
  drags_.begin(own, DRAG_OPERATION_MOVE);
  EXPECT_EQ(drags_.currentAllowedOps(), DRAG_OPERATION_MOVE);
  drags_.entered(at_, {"not this", {}}, DRAG_OPERATION_MOVE);
  EXPECT_EQ(view_.host->entered->GetLinkURL().ToString(), "http://127.0.0.1/");
  EXPECT_TRUE(view_.host->entered->GetFragmentText().empty());
  EXPECT_NE(view_.host->entered.get(), own.get());
}

TEST_F(DragSessionTest, ReportsTheEndOfADragOutAndClearsIt) {
  drags_.begin(CefDragData::Create(), DRAG_OPERATION_EVERY);
  drags_.setCurrentDragOp(DRAG_OPERATION_COPY);
  drags_.endedAt({7.8, 8.9}, 17);  // copy and move
  EXPECT_THAT(view_.host->lines, ElementsAre("ended 7,8 with 1", "drag over"));
  EXPECT_FALSE(drags_.currentDragData());
  EXPECT_EQ(drags_.currentAllowedOps(), DRAG_OPERATION_NONE);
  EXPECT_EQ(drags_.currentDragOp(), DRAG_OPERATION_NONE);
}

}  // namespace
}  // namespace client::test
