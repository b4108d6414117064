// An OpenGL context without a screen.
#pragma once

#include <EGL/egl.h>

#include "src/osr/renderer/pixels.h"

namespace client::test {

// Current from its making to its end. Draws into memory; needs no graphics device.
class EglContext {
 public:
  EglContext(int width, int height);
  ~EglContext();
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;

  // From now on OpenGL's operations do nothing.
  void release() const;

  // What is drawn in the lower left corner of the given size. The alpha of all is 255.
  static Pixels read(int width, int height);

 private:
  EGLDisplay display_;
  EGLSurface surface_;
  EGLContext context_;
};

}  // namespace client::test
