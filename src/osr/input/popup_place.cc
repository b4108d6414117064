#include "osr/input/popup_place.h"

#include "osr/renderer/osr_renderer.h"

namespace client {

bool PopupPlace::isUnder(const OsrPoint& point) const {
  return point.x >= drawn.x && point.x < drawn.x + drawn.width && point.y >= drawn.y &&
         point.y < drawn.y + drawn.height;
}

OsrPoint PopupPlace::toEngine(const OsrPoint& point) const {
  if (!isUnder(point)) {
    return point;
  }
  return {point.x + offsetX(), point.y + offsetY()};
}

PopupPlace popupPlaceOf(OsrView& view) {
  const OsrRenderer& renderer = view.renderer();
  return {view.convertRectFromBacking(renderer.popupRect()),
          view.convertRectFromBacking(renderer.givenPopupRect())};
}

}  // namespace client
