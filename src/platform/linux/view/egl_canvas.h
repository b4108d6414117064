#pragma once

#include <EGL/egl.h>

#include <QImage>
#include <memory>
#include <string>

namespace client {

// An OpenGL context that draws into memory, with or without a graphics device and a display, and
// the picture that was drawn. Thread: UI.
class EglCanvas {
 public:
  // Null when there is no OpenGL; `error` says what is missing.
  static std::unique_ptr<EglCanvas> create(std::string& error);
  ~EglCanvas();
  EglCanvas(const EglCanvas&) = delete;
  EglCanvas& operator=(const EglCanvas&) = delete;

  // The context is current between these; nothing can be drawn when there is no memory for `size`.
  // True when the surface is a new one, on which nothing is drawn yet.
  bool makeCurrent(const QSize& size);
  void clearCurrent();

  // Takes a part of the picture over from OpenGL, whose lower left part of this size it is; all of
  // it when the size is new. Gives what was taken. In pixels, from the picture's left upper corner.
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
