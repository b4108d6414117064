#include "surfaces.h"

#include <QApplication>
#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QPainter>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "osr/renderer/osr_renderer.h"
#include "platform/linux/view/egl_canvas.h"
#include "timing.h"

namespace bench {
namespace {

constexpr int kWidth = 1400;
constexpr int kHeight = 900;
constexpr int kFrames = 120;

using Rects = CefRenderHandler::RectList;

// Shows a frame with a changed part and returns when Qt has handed it to the display.
class Surface {
 public:
  virtual ~Surface() = default;
  virtual QWidget& widget() = 0;
  virtual void show(const Rects& dirty, const void* pixels) = 0;
};

class CanvasSurface final : public QWidget, public Surface {
 public:
  explicit CanvasSurface(std::unique_ptr<client::EglCanvas> canvas) : canvas_(std::move(canvas)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    renderer_->setSurfaceKeepsDrawing(true);
  }
  ~CanvasSurface() override {
    canvas_->makeCurrent(size());
    renderer_.reset();
    canvas_->clearCurrent();
  }
  QWidget& widget() override { return *this; }
  void show(const Rects& dirty, const void* pixels) override {
    canvas_->makeCurrent(size());
    renderer_->OnPaint(nullptr, PET_VIEW, dirty, pixels, kWidth, kHeight);
    renderer_->Render();
    const CefRect& drawn = renderer_->drawnRect();
    const QRect taken = canvas_->takePicture(size(), {drawn.x, drawn.y, drawn.width, drawn.height});
    canvas_->clearCurrent();
    repaint(taken);
  }

 private:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter(this).drawImage(0, 0, canvas_->picture());
  }

  std::unique_ptr<client::EglCanvas> canvas_;
  std::unique_ptr<client::OsrRenderer> renderer_ =
      std::make_unique<client::OsrRenderer>(false, false);
};

class GlWidgetSurface final : public QOpenGLWidget, public Surface {
 public:
  ~GlWidgetSurface() override {
    makeCurrent();
    renderer_.reset();
    doneCurrent();
  }
  QWidget& widget() override { return *this; }
  void show(const Rects& dirty, const void* pixels) override {
    makeCurrent();
    renderer_->OnPaint(nullptr, PET_VIEW, dirty, pixels, kWidth, kHeight);
    doneCurrent();
    repaint();
  }

 private:
  void paintGL() override { renderer_->Render(); }

  std::unique_ptr<client::OsrRenderer> renderer_ =
      std::make_unique<client::OsrRenderer>(false, false);
};

struct Cost {
  double wall = 0;
  double processor = 0;
};

Cost costOf(Surface& surface, const Rects& dirty, std::vector<uint32_t>& page) {
  std::vector<double> times;
  const double before = processorTime();
  for (int frame = 0; frame < kFrames; ++frame) {
    for (uint32_t& pixel : page) {
      pixel += 0x010203U;
    }
    const Stopwatch watch;
    surface.show(dirty, page.data());
    QApplication::processEvents();
    times.push_back(watch.passed());
  }
  return {median(times), (processorTime() - before) / kFrames};
}

void measure(const char* name, Surface& surface) {
  QWidget& widget = surface.widget();
  widget.setFixedSize(kWidth, kHeight);
  widget.show();
  QApplication::processEvents();
  std::vector<uint32_t> page(kWidth * kHeight, 0xFF204060U);
  const Rects whole{{0, 0, kWidth, kHeight}};
  const Rects part{{200, 100, 900, 60}};
  surface.show(whole, page.data());
  const Cost all = costOf(surface, whole, page);
  const Cost some = costOf(surface, part, page);
  std::printf("%-22s whole frame %7.0f µs (processor %7.0f)  900 × 60 of it %7.0f µs (%7.0f)\n",
              name, all.wall, all.processor, some.wall, some.processor);
}

}  // namespace

void compareSurfaces() {
  std::string error;
  if (auto canvas = client::EglCanvas::create(error)) {
    CanvasSurface surface(std::move(canvas));
    measure("memory and picture", surface);
  } else {
    std::printf("memory and picture: %s\n", error.c_str());
  }
  if (QOpenGLContext context; !context.create()) {
    std::printf("Qt's OpenGL widget: the platform %s has no OpenGL\n",
                qPrintable(QApplication::platformName()));
    return;
  }
  GlWidgetSurface surface;
  measure("Qt's OpenGL widget", surface);
}

}  // namespace bench
