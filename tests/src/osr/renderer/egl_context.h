// An OpenGL context without a screen.
#pragma once

#include <EGL/egl.h>

#include "src/osr/renderer/pixels.h"

namespace client::test {

// Current for its lifetime. Renders into memory; needs no graphics device.
class EglContext {
 public:
  EglContext(int width, int height);
  ~EglContext();
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;

  // Makes no context current: OpenGL calls then do nothing.
  void release() const;

  // Reads the lower left rectangle of this size, with alpha 255.
  static Pixels read(int width, int height);

 private:
  EGLDisplay display_;
  EGLSurface surface_;
  EGLContext context_;
};

}  // namespace client::test
