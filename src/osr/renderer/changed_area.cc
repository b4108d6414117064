#include "osr/renderer/changed_area.h"

#include <algorithm>
#include <utility>

namespace client {

void ChangedArea::add(const CefRect& rect) {
  if (rect.IsEmpty()) {
    return;
  }
  if (around_.IsEmpty()) {
    around_ = rect;
    return;
  }
  const int right = std::max(around_.x + around_.width, rect.x + rect.width);
  const int bottom = std::max(around_.y + around_.height, rect.y + rect.height);
  around_.x = std::min(around_.x, rect.x);
  around_.y = std::min(around_.y, rect.y);
  around_.width = right - around_.x;
  around_.height = bottom - around_.y;
}

CefRect ChangedArea::take(const CefSize& page) {
  const CefRect around = std::exchange(around_, CefRect());
  if (std::exchange(all_, false) || around.IsEmpty()) {
    return {0, 0, page.width, page.height};
  }
  const int left = std::clamp(around.x, 0, page.width);
  const int top = std::clamp(around.y, 0, page.height);
  return {left, top, std::clamp(around.x + around.width, left, page.width) - left,
          std::clamp(around.y + around.height, top, page.height) - top};
}

}  // namespace client
