#include "osr/input/rotation.h"

#include "osr/renderer/osr_renderer.h"

namespace client {

void Rotation::begin(const OsrPoint& point) {
  lastMousePos_ = point;
  curMousePos_ = point;
  rotating_ = true;
}

void Rotation::move(const OsrPoint& point, OsrRenderer& renderer) {
  curMousePos_ = point;
  renderer.setSpin(renderer.spinX() - static_cast<float>(curMousePos_.x - lastMousePos_.x),
                   renderer.spinY() - static_cast<float>(curMousePos_.y - lastMousePos_.y));
  lastMousePos_ = curMousePos_;
}

void Rotation::end(OsrRenderer& renderer) {
  renderer.setSpin(0, 0);
  rotating_ = false;
}

}  // namespace client
