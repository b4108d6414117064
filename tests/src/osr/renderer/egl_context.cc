#include "src/osr/renderer/egl_context.h"

#include <EGL/eglext.h>

#include <stdexcept>

#include "osr/renderer/gl.h"

namespace client::test {
namespace {

void require(bool fact, const char* what) {
  if (!fact) {
    throw std::runtime_error(what);
  }
}

}  // namespace

EglContext::EglContext(int width, int height)
    : display_(eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr)) {
  require(eglInitialize(display_, nullptr, nullptr), "EGL cannot start without a screen");
  require(eglBindAPI(EGL_OPENGL_API), "EGL has no OpenGL");
  const EGLint wanted[] = {EGL_SURFACE_TYPE,
                           EGL_PBUFFER_BIT,
                           EGL_RENDERABLE_TYPE,
                           EGL_OPENGL_BIT,
                           EGL_RED_SIZE,
                           8,
                           EGL_GREEN_SIZE,
                           8,
                           EGL_BLUE_SIZE,
                           8,
                           EGL_DEPTH_SIZE,
                           16,
                           EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  require(eglChooseConfig(display_, wanted, &config, 1, &count) && count == 1,
          "EGL has no such pixels");
  const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  surface_ = eglCreatePbufferSurface(display_, config, size);
  context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, nullptr);
  require(eglMakeCurrent(display_, surface_, surface_, context_), "EGL cannot draw");
}

void EglContext::release() const {
  eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

// The display stays: it is one for the whole process, and others may draw with it.
EglContext::~EglContext() {
  release();
  eglDestroyContext(display_, context_);
  eglDestroySurface(display_, surface_);
}

Pixels EglContext::read(int width, int height) {
  Pixels bottomFirst(width, height, distinct);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, bottomFirst.data());
  return {width, height, [&](int x, int y) {
            Color color = bottomFirst.at(x, height - 1 - y);
            color.alpha = 255;
            return color;
          }};
}

}  // namespace client::test
