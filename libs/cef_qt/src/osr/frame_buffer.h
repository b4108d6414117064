// The latest frame of an off-screen element, and what is new in it.
#pragma once

#include <QImage>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

namespace cef_qt {

// Two buffers that are used again and again: a new frame is drawn into one, compared with the
// other, and only what differs is copied there. Memory is asked for when the size changes only.
class FrameBuffer {
 public:
  // What the next frame is drawn into, premultiplied ARGB (BGRA bytes), of this size in pixels.
  QImage& next(const QSize& size);
  // Compares and takes over the next frame. False when nothing is new.
  bool accept();
  // The whole of the frame counts as new, as it is.
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

// Where two pictures of one size differ: bands of rows, each as narrow as its differences.
void findDifferences(const QImage& a, const QImage& b, std::vector<CefRect>& found);

}  // namespace cef_qt
