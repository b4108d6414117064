#include "osr/frame_buffer.h"

#include <gtest/gtest.h>

#include "support/allocation_count.h"

namespace cef_qt {
namespace {

constexpr QSize kSize(80, 60);

// Draws a rectangle of a colour into the next frame and takes it over.
bool draw(FrameBuffer& buffer, const CefRect& rect, QRgb color) {
  QImage& next = buffer.next(kSize);
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    auto* const row = reinterpret_cast<QRgb*>(next.scanLine(y));
    std::fill(row + rect.x, row + rect.x + rect.width, color);
  }
  return buffer.accept();
}

QRgb shownAt(const FrameBuffer& buffer, int x, int y) {
  return static_cast<const QRgb*>(buffer.pixels())[y * buffer.size().width() + x];
}

TEST(FrameBuffer, TakesTheFirstFrameWholeAndThenBandsAsNarrowAsTheirDifferences) {
  FrameBuffer buffer;
  EXPECT_TRUE(draw(buffer, {0, 0, 80, 60}, 0xFF000000U));
  EXPECT_EQ(buffer.dirtyRects(), std::vector<CefRect>{CefRect(0, 0, 80, 60)});
  EXPECT_FALSE(draw(buffer, {10, 10, 5, 5}, 0xFF000000U));
  EXPECT_TRUE(buffer.dirtyRects().empty());

  EXPECT_TRUE(draw(buffer, {79, 59, 1, 1}, 0xFFFFFFFFU));
  EXPECT_EQ(buffer.dirtyRects(), std::vector<CefRect>{CefRect(79, 59, 1, 1)});
  EXPECT_EQ(shownAt(buffer, 79, 59), 0xFFFFFFFFU);

  // Near rows are one band, far ones two.
  draw(buffer, {3, 0, 2, 1}, 0xFF112233U);
  QImage& next = buffer.next(kSize);
  next.setPixel(40, 5, 0xFF445566U);
  next.setPixel(20, 15, 0xFF445566U);
  next.setPixel(70, 50, 0xFF445566U);
  EXPECT_TRUE(buffer.accept());
  EXPECT_EQ(buffer.dirtyRects(),
            (std::vector<CefRect>{CefRect(20, 5, 21, 11), CefRect(70, 50, 1, 1)}));
  buffer.markAll();
  EXPECT_EQ(buffer.dirtyRects(), std::vector<CefRect>{CefRect(0, 0, 80, 60)});
}

TEST(FrameBuffer, UsesTheSameMemoryForEveryFrameOfASize) {
  FrameBuffer buffer;
  draw(buffer, {0, 0, 80, 60}, 0xFF000000U);
  draw(buffer, {0, 0, 1, 1}, 0xFF000001U);
  const void* const shown = buffer.pixels();
  const void* const next = buffer.next(kSize).constBits();
  const client::test::AllocationCount allocations;
  for (QRgb frame = 1; frame < 50; ++frame) {
    ASSERT_TRUE(draw(buffer, {static_cast<int>(frame), 3, 10, 2}, 0xFF000000U + frame * 7));
  }
  EXPECT_EQ(allocations.count(), 0);
  EXPECT_EQ(buffer.pixels(), shown);
  EXPECT_EQ(buffer.next(kSize).constBits(), next);
}

}  // namespace
}  // namespace cef_qt
