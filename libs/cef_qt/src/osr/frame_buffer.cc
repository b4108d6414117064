#include "osr/frame_buffer.h"

#include <algorithm>
#include <cstring>

namespace cef_qt {
namespace {

// Closer bands are merged: another rectangle costs more than a few rows.
constexpr int kMinRowsBetweenBands = 16;

const quint32* rowOf(const QImage& image, int y) {
  return reinterpret_cast<const quint32*>(image.constScanLine(y));
}

// Widens [left, right) to the differences of two rows that are not equal.
void widen(const quint32* a, const quint32* b, int width, int& left, int& right) {
  left = static_cast<int>(std::mismatch(a, a + left, b).first - a);
  int end = width;
  while (end > right && a[end - 1] == b[end - 1]) {
    --end;
  }
  right = end;
}

}  // namespace

void findDifferences(const QImage& a, const QImage& b, std::vector<CefRect>& found) {
  found.clear();
  const int width = a.width();
  const std::size_t rowBytes = sizeof(quint32) * static_cast<std::size_t>(width);
  int left = width;
  int right = 0;
  int top = -1;
  int bottom = -1;
  const auto endBand = [&] {
    if (top >= 0) {
      found.emplace_back(left, top, right - left, bottom - top + 1);
    }
    left = width;
    right = 0;
    top = -1;
  };
  for (int y = 0; y < a.height(); ++y) {
    const quint32* const rowA = rowOf(a, y);
    const quint32* const rowB = rowOf(b, y);
    if (std::memcmp(rowA, rowB, rowBytes) == 0) {
      continue;
    }
    if (top >= 0 && y - bottom > kMinRowsBetweenBands) {
      endBand();
    }
    top = top < 0 ? y : top;
    bottom = y;
    widen(rowA, rowB, width, left, right);
  }
  endBand();
}

QImage& FrameBuffer::next(const QSize& size) {
  if (next_.size() != size) {
    next_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
    next_.fill(Qt::transparent);
  }
  return next_;
}

bool FrameBuffer::accept() {
  if (shown_.size() != next_.size()) {
    shown_ = QImage(next_.size(), next_.format());
    std::memcpy(shown_.bits(), next_.constBits(), static_cast<std::size_t>(next_.sizeInBytes()));
    markAll();
    return true;
  }
  findDifferences(next_, shown_, dirty_);
  for (const CefRect& rect : dirty_) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
      std::memcpy(shown_.scanLine(y) + rect.x * 4, next_.constScanLine(y) + rect.x * 4,
                  static_cast<std::size_t>(rect.width) * 4);
    }
  }
  return !dirty_.empty();
}

void FrameBuffer::markAll() {
  dirty_.assign(1, CefRect(0, 0, shown_.width(), shown_.height()));
}

}  // namespace cef_qt
