// The renderer's pixels and uploads under a real OpenGL context.
#include "osr/renderer/osr_renderer.h"

#include <gtest/gtest.h>

#include "osr/renderer/texture_upload.h"
#include "src/osr/renderer/egl_context.h"
#include "src/osr/renderer/pixels.h"

namespace client::test {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

class OsrRendererTest : public testing::Test {
 protected:
  void makeRenderer(bool transparent, bool showUpdateRect) {
    renderer_ = std::make_unique<OsrRenderer>(transparent, showUpdateRect);
  }
  void paintView(const Pixels& page, const CefRenderHandler::RectList& dirty) {
    renderer_->OnPaint(nullptr, PET_VIEW, dirty, page.data(), page.width(), page.height());
  }
  void paintPopup(const Pixels& popup) {
    renderer_->OnPaint(nullptr, PET_POPUP, {popup.rect()}, popup.data(), popup.width(),
                       popup.height());
  }
  Pixels drawn() {
    renderer_->Render();
    return EglContext::read(renderer_->viewWidth(), renderer_->viewHeight());
  }

  EglContext context_{100, 80};
  std::unique_ptr<OsrRenderer> renderer_ = std::make_unique<OsrRenderer>(false, false);
  Pixels page_{kWidth, kHeight, distinct};
};

// The background of a transparent page: red at the bottom, blue at the top.
Color background(int y) {
  const double blue = 1 - (y + 0.5) / kHeight;
  return {static_cast<uint8_t>(blue * 255 + 0.5), 0, static_cast<uint8_t>((1 - blue) * 255 + 0.5),
          255};
}

bool near(Color a, Color b) {
  const auto close = [](int x, int y) { return std::abs(x - y) <= 1; };
  return close(a.red, b.red) && close(a.green, b.green) && close(a.blue, b.blue);
}

TEST_F(OsrRendererTest, CopiesOnlyTheDirtyRectanglesUnlessTheSizeChanges) {
  // An opaque page hides the background whatever its alpha says.
  page_.fill({10, 10, 5, 5}, [](int, int) { return Color{1, 2, 3, 0}; });
  paintView(page_, {page_.rect()});
  page_.fill({10, 10, 5, 5}, [](int, int) { return Color{1, 2, 3, 255}; });
  EXPECT_EQ(difference(drawn(), page_), "");

  Pixels expected = page_;
  const CefRect first(3, 5, 20, 7);
  const CefRect second(40, 30, 24, 18);
  expected.fill(first, changed);
  expected.fill(second, changed);
  paintView(Pixels(kWidth, kHeight, changed), {first, second});
  EXPECT_EQ(difference(drawn(), expected), "");
  const Pixels wider(80, 40, changed);
  paintView(wider, {{1, 1, 2, 2}});
  EXPECT_EQ(difference(drawn(), wider), "");
}

TEST_F(OsrRendererTest, DrawsNothingBeforeTheFirstViewPaint) {
  const auto green = [](int, int) { return Color{0, 255, 0, 255}; };
  glClearColor(0, 1, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  renderer_->Render();
  paintView(Pixels(kWidth, 0, distinct), {});
  renderer_->Render();
  EXPECT_EQ(difference(EglContext::read(9, 9), Pixels(9, 9, green)), "");
}

TEST_F(OsrRendererTest, BlendsATransparentPageOverTheGradient) {
  makeRenderer(true, false);
  // Premultiplied: clear, half green, solid.
  page_.fill(page_.rect(), [](int, int) { return Color{0, 0, 0, 0}; });
  page_.fill({0, 0, 20, kHeight}, [](int, int) { return Color{0, 128, 0, 128}; });
  page_.fill({20, 0, 20, kHeight}, distinct);
  paintView(page_, {page_.rect()});
  const Pixels result = drawn();
  for (int y = 0; y < kHeight; ++y) {
    const Color behind = background(y);
    const Color half{static_cast<uint8_t>(behind.blue * 127 / 255), 128,
                     static_cast<uint8_t>(behind.red * 127 / 255), 255};
    EXPECT_TRUE(near(result.at(5, y), half)) << y;
    EXPECT_EQ(result.at(25, y), distinct(25, y)) << y;
    EXPECT_TRUE(near(result.at(50, y), behind)) << y;
  }
}

TEST_F(OsrRendererTest, OutlinesTheFirstDirtyRectangleToThePixel) {
  makeRenderer(false, true);
  const auto red = [](int, int) { return Color{0, 0, 255, 255}; };
  const auto outlined = [&](const CefRect& r) {
    Pixels expected = page_;
    expected.fill({r.x, r.y, r.width, 1}, red);
    expected.fill({r.x, r.y + r.height - 1, r.width, 1}, red);
    expected.fill({r.x, r.y, 1, r.height}, red);
    expected.fill({r.x + r.width - 1, r.y, 1, r.height}, red);
    // Lines leave their last point out, so the strip does not touch this corner.
    const int bottom = r.y + r.height - 1;
    expected.fill({r.x, bottom, 1, 1}, distinct);
    return expected;
  };
  paintView(page_, {page_.rect()});
  EXPECT_EQ(difference(drawn(), outlined(page_.rect())), "");
  paintView(page_, {{10, 20, 30, 9}, {0, 0, 4, 4}});
  EXPECT_EQ(difference(drawn(), outlined({10, 20, 30, 9})), "");
  // Drawing leaves nothing behind for the next frame.
  paintView(page_, {{10, 20, 0, 9}});
  EXPECT_EQ(difference(drawn(), page_), "");
}

TEST_F(OsrRendererTest, DrawsOnlyAroundWhatChangedOnASurfaceThatKeepsItsDrawing) {
  renderer_->setSurfaceKeepsDrawing(true);
  paintView(page_, {page_.rect()});
  EXPECT_EQ(difference(drawn(), page_), "");
  EXPECT_EQ(renderer_->drawnRect(), page_.rect());

  const Color green{0, 255, 0, 255};
  glClearColor(0, 1, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  const Pixels next(kWidth, kHeight, changed);
  paintView(next, {{3, 5, 10, 7}, {20, 8, 4, 10}});
  Pixels expected = page_;
  expected.fill({3, 5, 10, 7}, changed);
  expected.fill({20, 8, 4, 10}, changed);
  const Pixels result = drawn();
  const CefRect around(3, 5, 21, 13);
  EXPECT_EQ(renderer_->drawnRect(), around);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const bool isInside = x >= 3 && x < 24 && y >= 5 && y < 18;
      ASSERT_EQ(result.at(x, y), isInside ? expected.at(x, y) : green) << x << ',' << y;
    }
  }

  renderer_->OnPopupSize(nullptr, {60, 40, 10, 10});
  paintPopup(Pixels(10, 10, distinct));
  drawn();
  EXPECT_EQ(renderer_->drawnRect(), CefRect(54, 38, 10, 10));
  renderer_->invalidateSurface();
  expected.fill({54, 38, 10, 10}, [](int x, int y) { return distinct(x - 54, y - 38); });
  EXPECT_EQ(difference(drawn(), expected), "");
  for (const float spin : {20.0F, 0.0F}) {
    renderer_->setSpin(spin, 0);
    paintView(page_, {{0, 0, 1, 1}});
    drawn();
    EXPECT_EQ(renderer_->drawnRect(), page_.rect());
  }
}

TEST_F(OsrRendererTest, RotatesThePageAndNotTheBackground) {
  paintView(page_, {page_.rect()});
  renderer_->setSpin(180, 0);
  const Pixels upsideDown(kWidth, kHeight,
                          [this](int x, int y) { return page_.at(x, kHeight - 1 - y); });
  EXPECT_EQ(difference(drawn(), upsideDown), "");
  renderer_->setSpin(0, 180);
  const Pixels mirrored(kWidth, kHeight,
                        [this](int x, int y) { return page_.at(kWidth - 1 - x, y); });
  EXPECT_EQ(difference(drawn(), mirrored), "");
  renderer_->setSpin(90, 0);
  const Pixels edgeOn = drawn();
  EXPECT_TRUE(near(edgeOn.at(9, 3), background(3)));
  EXPECT_TRUE(near(edgeOn.at(9, 40), background(40)));
  renderer_->setSpin(0, 0);
  EXPECT_EQ(difference(drawn(), page_), "");
}

TEST_F(OsrRendererTest, UploadsThePartOfAPopupInThePage) {
  const Pixels popup(20, 10, changed);
  // Positions, and the visible parts in the page.
  for (const auto& [position, visible] : {std::pair<CefPoint, CefRect>{{7, 9}, {7, 9, 20, 10}},
                                          {{-10, 9}, {0, 9, 10, 10}},
                                          {{7, -3}, {7, 0, 20, 7}},
                                          {{50, 9}, {50, 9, 14, 10}},
                                          {{7, 44}, {7, 44, 20, 4}},
                                          {{60, 45}, {60, 45, 4, 3}},
                                          {{kWidth, 0}, {}},
                                          {{0, -10}, {}}}) {
    paintView(page_, {page_.rect()});
    Pixels expected = page_;
    expected.fill(visible, [&](int x, int y) { return popup.at(x - position.x, y - position.y); });
    uploadPopup(position, {20, 10}, {kWidth, kHeight}, popup.data());
    EXPECT_EQ(difference(drawn(), expected), "") << position.x << ',' << position.y;
  }
}

TEST_F(OsrRendererTest, DrawsNothingOfAHiddenPopup) {
  paintView(page_, {page_.rect()});
  const Pixels popup(20, 10, changed);
  paintPopup(popup);
  renderer_->OnPopupSize(nullptr, {1, 1, 20, 10});
  renderer_->OnPopupShow(nullptr, false);
  paintPopup(popup);
  EXPECT_EQ(difference(drawn(), page_), "");
}

TEST_F(OsrRendererTest, MovesPopupsIntoThePageAndKeepsTheirSize) {
  paintView(page_, {page_.rect()});
  EXPECT_EQ(renderer_->GetPopupRectInWebView({-5, -6, 10, 10}), CefRect(0, 0, 10, 10));
  EXPECT_EQ(renderer_->GetPopupRectInWebView({60, 40, 10, 10}), CefRect(54, 38, 10, 10));
  EXPECT_EQ(renderer_->GetPopupRectInWebView({5, 5, 100, 90}), CefRect(0, 0, 100, 90));
  renderer_->OnPopupSize(nullptr, {60, 45, 20, 10});
  renderer_->OnPopupSize(nullptr, {9, 9, 0, 4});  // ignored
  renderer_->OnPopupSize(nullptr, {9, 9, 3, -1});
  renderer_->OnPopupShow(nullptr, true);
  EXPECT_EQ(renderer_->popupRect(), CefRect(44, 38, 20, 10));
  EXPECT_EQ(renderer_->givenPopupRect(), CefRect(60, 45, 20, 10));
  const Pixels popup(20, 10, changed);
  paintPopup(popup);
  Pixels expected = page_;
  expected.fill({44, 38, 20, 10}, [&](int x, int y) { return popup.at(x - 44, y - 38); });
  EXPECT_EQ(difference(drawn(), expected), "");
}

}  // namespace
}  // namespace client::test
