#pragma once

#include "osr/view/osr_view.h"

namespace client {

// Where the open pop-up is drawn, and where the engine placed it. In view points; empty when there
// is no pop-up.
struct PopupPlace {
  CefRect drawn;
  CefRect given;

  bool isUnder(const OsrPoint& point) const;
  int offsetX() const { return given.x - drawn.x; }
  int offsetY() const { return given.y - drawn.y; }
  bool isDisplaced() const { return offsetX() != 0 || offsetY() != 0; }

  // The point as the engine sees it.
  OsrPoint toEngine(const OsrPoint& point) const;
};

// The place of the pop-up that the view's renderer has.
PopupPlace popupPlaceOf(OsrView& view);

}  // namespace client
