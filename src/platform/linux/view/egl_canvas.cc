#include "platform/linux/view/egl_canvas.h"

#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cstring>

namespace client {
namespace {

// One for the whole process, which all canvases share: none of them may terminate it.
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
  // With an alpha channel, the pixels lie in memory as the picture wants them: without one, taking
  // a picture over takes ten times as long. A depth buffer would only be cleared.
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
                           EGL_ALPHA_SIZE,
                           8,
                           EGL_NONE};
  EGLint count = 0;
  return eglChooseConfig(display, wanted, &config, 1, &count) && count == 1;
}

// Mesa can hand rows over from the top; others begin at the bottom.
bool takesTopRowFirst() {
  static const bool kTakes = [] {
    const auto* const extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    return extensions != nullptr && std::strstr(extensions, "GL_MESA_pack_invert") != nullptr;
  }();
  return kTakes;
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
    return nullptr;
  }
  const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (context == EGL_NO_CONTEXT) {
    error = "EGL makes no OpenGL context";
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
}

bool EglCanvas::makeCurrent(const QSize& size) {
  const bool isNew = surface_ == EGL_NO_SURFACE || surfaceSize_ != size;
  if (isNew) {
    resize(size);
  }
  eglMakeCurrent(display_, surface_, surface_, context_);
  return isNew;
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

QRect EglCanvas::takePicture(const QSize& size, const QRect& part) {
  QRect taken = part & QRect(QPoint(), size);
  if (!size.isEmpty() && picture_.size() != size) {
    picture_ = QImage(size, QImage::Format_RGB32);
    picture_.fill(Qt::white);
    taken = picture_.rect();
  }
  if (!taken.isEmpty()) {
    read(taken);
  }
  return taken;
}

void EglCanvas::read(const QRect& part) {
  const int bottom = picture_.height() - part.y() - part.height();
  const auto target = [&](int y) { return picture_.scanLine(y) + 4 * part.x(); };
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, picture_.width());
  if (takesTopRowFirst()) {
    glPixelStorei(GL_PACK_INVERT_MESA, GL_TRUE);
  }
  glReadPixels(part.x(), bottom, part.width(), part.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
               target(part.y()));
  if (takesTopRowFirst()) {
    return;
  }
  for (int upper = part.top(), lower = part.bottom(); upper < lower; ++upper, --lower) {
    std::swap_ranges(target(upper), target(upper) + 4 * part.width(), target(lower));
  }
}

}  // namespace client
