#include "platform/linux/egl_canvas_linux.h"

#include <EGL/eglext.h>

#include <algorithm>

#include "osr/gl.h"

namespace client {
namespace {

EGLDisplay openDisplay() {
  const EGLDisplay surfaceless =
      eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (surfaceless != EGL_NO_DISPLAY && eglInitialize(surfaceless, nullptr, nullptr)) {
    return surfaceless;
  }
  const EGLDisplay standard = eglGetDisplay(EGL_DEFAULT_DISPLAY);
  if (standard != EGL_NO_DISPLAY && eglInitialize(standard, nullptr, nullptr)) {
    return standard;
  }
  return EGL_NO_DISPLAY;
}

bool chooseConfig(EGLDisplay display, EGLConfig& config) {
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
                           EGL_NONE};
  EGLint count = 0;
  return eglChooseConfig(display, wanted, &config, 1, &count) && count == 1;
}

}  // namespace

std::unique_ptr<EglCanvas> EglCanvas::create(std::string& error) {
  const EGLDisplay display = openDisplay();
  if (display == EGL_NO_DISPLAY) {
    error = "EGL finds nothing that draws";
    return nullptr;
  }
  EGLConfig config = nullptr;
  if (!eglBindAPI(EGL_OPENGL_API) || !chooseConfig(display, config)) {
    error = "EGL has no OpenGL that draws into memory";
    eglTerminate(display);
    return nullptr;
  }
  const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (context == EGL_NO_CONTEXT) {
    error = "EGL makes no OpenGL context";
    eglTerminate(display);
    return nullptr;
  }
  return std::unique_ptr<EglCanvas>(new EglCanvas(display, config, context));
}

EglCanvas::~EglCanvas() {
  clearCurrent();
  if (surface_ != EGL_NO_SURFACE) {
    eglDestroySurface(display_, surface_);
  }
  eglDestroyContext(display_, context_);
  eglTerminate(display_);
}

void EglCanvas::makeCurrent(const QSize& size) {
  if (surface_ == EGL_NO_SURFACE || surfaceSize_ != size) {
    resize(size);
  }
  eglMakeCurrent(display_, surface_, surface_, context_);
}

void EglCanvas::resize(const QSize& size) {
  clearCurrent();
  if (surface_ != EGL_NO_SURFACE) {
    eglDestroySurface(display_, surface_);
  }
  const EGLint attributes[] = {EGL_WIDTH, qMax(size.width(), 1), EGL_HEIGHT, qMax(size.height(), 1),
                               EGL_NONE};
  surface_ = eglCreatePbufferSurface(display_, config_, attributes);
  surfaceSize_ = size;
}

void EglCanvas::clearCurrent() {
  eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

void EglCanvas::takePicture(const QSize& size) {
  if (size.isEmpty()) {
    return;
  }
  if (picture_.size() != size) {
    picture_ = QImage(size, QImage::Format_RGB32);
  }
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glReadPixels(0, 0, size.width(), size.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
               picture_.bits());
  // OpenGL's bottom row comes first.
  const auto rowBytes = static_cast<std::size_t>(picture_.bytesPerLine());
  for (int top = 0, bottom = size.height() - 1; top < bottom; ++top, --bottom) {
    std::swap_ranges(picture_.scanLine(top), picture_.scanLine(top) + rowBytes,
                     picture_.scanLine(bottom));
  }
}

}  // namespace client
