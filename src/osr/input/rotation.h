#pragma once

#include "osr/view/osr_view.h"

namespace client {

class OsrRenderer;

// Spins the drawn page while the right button is held that went down with shift. Thread: UI.
class Rotation {
 public:
  bool isRotating() const { return rotating_; }

  void begin(const OsrPoint& point);
  // Follows the pointer.
  void move(const OsrPoint& point, OsrRenderer& renderer);
  // Puts the page upright again.
  void end(OsrRenderer& renderer);

 private:
  OsrPoint lastMousePos_;
  OsrPoint curMousePos_;
  bool rotating_ = false;
};

}  // namespace client
