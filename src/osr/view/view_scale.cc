#include "osr/view/view_scale.h"

#include <cmath>

namespace client {
namespace {

CefRect scaled(const CefRect& rect, double factor) {
  const auto down = [factor](int value) { return static_cast<int>(std::floor(value * factor)); };
  const auto up = [factor](int value) { return static_cast<int>(std::ceil(value * factor)); };
  const int x = down(rect.x);
  const int y = down(rect.y);
  return {x, y, up(rect.x + rect.width) - x, up(rect.y + rect.height) - y};
}

}  // namespace

float getDeviceScaleFactor(const std::optional<WindowScale>& window) {
  if (!window) {
    return 1;
  }
  return window->backing.value_or(window->userSpace);
}

void reportScaleChange(OsrView& view, float oldScale) {
  const CefRefPtr<CefBrowser> browser = view.browser();
  if (browser && view.deviceScaleFactor() != oldScale) {
    browser->GetHost()->NotifyScreenInfoChanged();
  }
}

CefRect pointsToPixels(const CefRect& points, float scale) {
  return scaled(points, scale);
}

CefRect pixelsToPoints(const CefRect& pixels, float scale) {
  return scaled(pixels, 1.0 / scale);
}

CefRect toTopLeftOrigin(const CefRect& target, const CefRect& screenFrame) {
  return {target.x, (screenFrame.y + screenFrame.height) - (target.y + target.height), target.width,
          target.height};
}

}  // namespace client
