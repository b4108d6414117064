// The latest frame of an off-screen element and its dirty rectangles.
#pragma once

#include <QImage>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

namespace cef_qt {

// A new frame is drawn into one buffer and compared with a second one, to which only the
// differences are copied. Allocates only when the size changes.
class FrameBuffer {
 public:
  // The buffer for the next frame: premultiplied ARGB (BGRA bytes), size in pixels.
  QImage& next(const QSize& size);
  // Makes the next frame the latest one. False if they are equal.
  bool accept();
  // Makes the whole frame dirty.
  void markAll();

  const std::vector<CefRect>& dirtyRects() const { return dirty_; }
  // Rows without gaps, top row first.
  const void* pixels() const { return shown_.constBits(); }
  QSize size() const { return shown_.size(); }

 private:
  QImage next_;
  QImage shown_;
  std::vector<CefRect> dirty_;
};

// Finds the differences of two pictures of the same size: bands of rows, each as narrow as its
// differences.
void findDifferences(const QImage& a, const QImage& b, std::vector<CefRect>& found);

}  // namespace cef_qt
