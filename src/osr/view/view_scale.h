// Points and pixels of a view.
#pragma once

#include <optional>

#include "include/cef_base.h"
#include "osr/view/osr_view.h"

namespace client {

// The scale of a view's window.
struct WindowScale {
  std::optional<float> backing;  // none on systems without backing scale factors
  float userSpace = 1;
};

// 1 without a window.
float getDeviceScaleFactor(const std::optional<WindowScale>& window);

// Notifies the browser if the scale differs from `oldScale`.
void reportScaleChange(OsrView& view, float oldScale);

// Round outwards: every pixel that the points touch, and vice versa.
CefRect pointsToPixels(const CefRect& points, float scale);
CefRect pixelsToPoints(const CefRect& pixels, float scale);

// Converts a rectangle of a screen whose y axis points up to a top left origin.
CefRect toTopLeftOrigin(const CefRect& target, const CefRect& screenFrame);

}  // namespace client
