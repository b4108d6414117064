#pragma once

#include <EGL/egl.h>

#include <QImage>
#include <memory>
#include <string>

namespace client {

// An OpenGL context that renders into memory, with or without a graphics device and a display, and
// the resulting image. Thread: UI.
class EglCanvas {
 public:
  // Returns null and sets `error` if OpenGL is not available.
  static std::unique_ptr<EglCanvas> create(std::string& error);
  ~EglCanvas();
  EglCanvas(const EglCanvas&) = delete;
  EglCanvas& operator=(const EglCanvas&) = delete;

  // The context is current between these calls; without memory for `size` nothing is drawn. Returns
  // true if the surface is new and empty.
  bool makeCurrent(const QSize& size);
  void clearCurrent();

  // Copies a part of the rendered picture, which is the lower left part of the surface with this
  // size; all of it if the size changed. Returns the copied rectangle, in pixels from the picture's
  // upper left corner.
  QRect takePicture(const QSize& size, const QRect& part);
  const QImage& picture() const { return picture_; }

 private:
  EglCanvas(EGLDisplay display, EGLConfig config, EGLContext context)
      : display_(display), config_(config), context_(context) {}
  void resize(const QSize& size);
  void read(const QRect& part);

  const EGLDisplay display_;
  const EGLConfig config_;
  const EGLContext context_;
  EGLSurface surface_ = EGL_NO_SURFACE;
  QSize surfaceSize_;
  QImage picture_;
};

}  // namespace client
