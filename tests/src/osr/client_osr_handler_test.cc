#include "osr/client_osr_handler.h"

#include <gmock/gmock.h>

#include "src/osr/renderer/egl_context.h"
#include "src/osr/view/fake_osr_view.h"
#include "support/allocation_count.h"

namespace client::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClientOSRHandlerTest : public testing::Test {
 protected:
  void paint(cef_paint_element_type_t type, const Pixels& pixels, const CefRect& dirty) {
    handler_->OnPaint(browser(), type, {dirty}, pixels.data(), pixels.width(), pixels.height());
  }
  CefRefPtr<CefBrowser> browser() { return view_->fakeBrowser; }

  EglContext context_{200, 100};
  std::shared_ptr<FakeOsrView> view_ = std::make_shared<FakeOsrView>();
  CefRefPtr<RenderHandler> handler_ = OSRWindow::Create(view_)->GetRenderHandler();
  Pixels page_{100, 60, distinct};
};

TEST_F(ClientOSRHandlerTest, AnswersTheEnginesQueriesAboutTheView) {
  CefRect rect;
  EXPECT_FALSE(handler_->GetRootScreenRect(browser(), rect));
  handler_->GetViewRect(browser(), rect);
  EXPECT_EQ(rect, CefRect(0, 0, 200, 100));
  view_->size = {0.5, 100};
  handler_->GetViewRect(browser(), rect);
  EXPECT_FALSE(rect.IsEmpty());
  int x = 0;
  int y = 0;
  EXPECT_TRUE(handler_->GetScreenPoint(browser(), 10, 20, x, y));
  EXPECT_EQ(CefPoint(x, y), CefPoint(1010, 520));

  CefScreenInfo info;
  EXPECT_FALSE(handler_->GetScreenInfo(browser(), info));  // no window
  view_->osrScreen = OsrScreen{24, 8, true, {0, 0, 1920, 1080}, {0, 30, 1920, 1050}};
  EXPECT_TRUE(handler_->GetScreenInfo(browser(), info));
  EXPECT_EQ(info.device_scale_factor, 2);
  EXPECT_EQ(info.depth, 24);
  EXPECT_EQ(info.depth_per_component, 8);
  EXPECT_TRUE(info.is_monochrome);
  EXPECT_EQ(CefRect(info.rect), CefRect(0, 0, 1920, 1080));
  EXPECT_EQ(CefRect(info.available_rect), CefRect(0, 30, 1920, 1050));
}

TEST_F(ClientOSRHandlerTest, AnswersFalseAndDoesNothingWithoutAView) {
  view_.reset();
  const CefRefPtr<CefBrowser> browser(new FakeBrowser);
  CefRect rect;
  int x = 0;
  int y = 0;
  CefScreenInfo info;
  handler_->GetViewRect(browser, rect);
  EXPECT_FALSE(rect.IsEmpty());
  EXPECT_FALSE(handler_->GetScreenPoint(browser, 1, 1, x, y));
  EXPECT_FALSE(handler_->GetScreenInfo(browser, info));
  EXPECT_FALSE(handler_->StartDragging(browser, nullptr, DRAG_OPERATION_COPY, 1, 1));
  EXPECT_FALSE(handler_->OnCursorChange(browser, 0, CT_HAND, {}));
  handler_->OnTextSelectionChanged(browser, "", CefRange(0, 0));
  handler_->OnImeCompositionRangeChanged(browser, CefRange(0, 0), {});
  handler_->OnVirtualKeyboardRequested(browser, CEF_TEXT_INPUT_MODE_TEXT);
  handler_->OnPopupShow(browser, false);
  handler_->OnPopupSize(browser, {1, 1, 1, 1});
  handler_->OnPaint(browser, PET_VIEW, {page_.rect()}, page_.data(), 100, 60);
  handler_->UpdateDragCursor(browser, DRAG_OPERATION_COPY);
  handler_->OnBeforeClose(browser);
}

TEST_F(ClientOSRHandlerTest, HasAnOpenPopupPaintedOverEveryFreshView) {
  const Pixels popup(20, 10, changed);
  view_->host->onInvalidate = [&](cef_paint_element_type_t type) {
    if (type == PET_POPUP) {
      paint(PET_POPUP, popup, popup.rect());
    }
  };
  paint(PET_VIEW, page_, page_.rect());
  EXPECT_EQ(difference(EglContext::read(100, 60), page_), "");
  handler_->OnPopupShow(browser(), true);
  handler_->OnPopupSize(browser(), {5, 6, 10, 5});
  EXPECT_EQ(view_->osrRenderer.popupRect(), CefRect(10, 12, 20, 10));
  view_->lines.clear();
  paint(PET_VIEW, page_, page_.rect());
  EXPECT_THAT(view_->host->lines, ElementsAre("invalidate popup"));
  // The pop-up inside neither switches contexts nor draws.
  EXPECT_THAT(view_->lines, ElementsAre("make current", "clear current", "flush"));
  Pixels expected = page_;
  expected.fill({10, 12, 20, 10}, [&](int x, int y) { return popup.at(x - 10, y - 12); });
  EXPECT_EQ(difference(EglContext::read(100, 60), expected), "");

  view_->host->lines.clear();
  view_->lines.clear();
  paint(PET_POPUP, popup, popup.rect());
  EXPECT_THAT(view_->host->lines, IsEmpty());
  EXPECT_THAT(view_->lines, ElementsAre("make current", "clear current", "flush"));
  handler_->OnPopupShow(browser(), false);
  EXPECT_THAT(view_->host->lines, ElementsAre("invalidate view"));
  EXPECT_TRUE(view_->osrRenderer.givenPopupRect().IsEmpty());
}

TEST_F(ClientOSRHandlerTest, ForwardsCursorsInputMethodsAndDrags) {
  handler_->OnTextSelectionChanged(browser(), "b", CefRange(1, 2));
  handler_->OnImeCompositionRangeChanged(browser(), CefRange(1, 2), {CefRect(1, 2, 3, 4)});
  handler_->OnVirtualKeyboardRequested(browser(), CEF_TEXT_INPUT_MODE_URL);
  EXPECT_EQ(view_->text.selectedText().ToString(), "b");
  EXPECT_EQ(view_->text.boundsOf(0), CefRect(1, 2, 3, 4));
  EXPECT_EQ(view_->text.mode(), CEF_TEXT_INPUT_MODE_URL);
  view_->lines.clear();
  EXPECT_TRUE(handler_->OnCursorChange(browser(), 0, CT_HAND, {}));
  EXPECT_EQ(view_->cursor, CT_HAND);
  EXPECT_TRUE(handler_->StartDragging(browser(), nullptr, DRAG_OPERATION_COPY, 1, 1));
  EXPECT_FALSE(handler_->StartDragging(browser(), nullptr, DRAG_OPERATION_COPY, 0, 0));
  handler_->UpdateDragCursor(browser(), DRAG_OPERATION_LINK);
  EXPECT_EQ(view_->dragOperation, DRAG_OPERATION_LINK);
  handler_->OnBeforeClose(browser());
  EXPECT_FALSE(view_->browser());
  handler_ = nullptr;
  EXPECT_THAT(view_->lines, ElementsAre("stop observing"));
}

TEST_F(ClientOSRHandlerTest, AllocatesNothingForAFrame) {
  const CefRenderHandler::RectList dirty{{3, 4, 20, 10}, {50, 20, 30, 30}};
  const CefRefPtr<CefBrowser> kept = browser();
  const auto frames = [&](int count) {
    const AllocationCount allocations;
    for (int i = 0; i < count; ++i) {
      handler_->OnPaint(kept, PET_VIEW, dirty, page_.data(), 100, 60);
      view_->lines.clear();
    }
    return allocations.count();
  };
  paint(PET_VIEW, page_, page_.rect());
  context_.release();  // excludes the driver's allocations
  frames(1);
  EXPECT_EQ(frames(50), 0);
}

}  // namespace
}  // namespace client::test
