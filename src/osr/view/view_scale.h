// Points and pixels of a view.
#pragma once

#include <optional>

#include "include/cef_base.h"
#include "osr/view/osr_view.h"

namespace client {

// What a view's window knows of its scale.
struct WindowScale {
  std::optional<float> backing;  // none on systems without backing scale factors
  float userSpace = 1;
};

// 1 without a window.
float getDeviceScaleFactor(const std::optional<WindowScale>& window);

// Tells the browser that the screen information changed, when the scale did.
void reportScaleChange(OsrView& view, float oldScale);

// Every pixel that the points touch, and the points that pixels touch.
CefRect pointsToPixels(const CefRect& points, float scale);
CefRect pixelsToPoints(const CefRect& pixels, float scale);

// A rectangle of a screen whose y axis points up from the bottom, counted from the top instead.
CefRect toTopLeftOrigin(const CefRect& target, const CefRect& screenFrame);

}  // namespace client
