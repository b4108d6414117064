#include "osr/painted_widget.h"

#include <QQuickWindow>
#include <algorithm>

namespace cef_qt {

PaintedWidget::PaintedWidget(QQuickWidget* widget, int framesPerSecond, Painted painted)
    : widget_(widget),
      guard_(widget),
      frameMs_(1000 / framesPerSecond),
      painted_(std::move(painted)) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, &PaintedWidget::paint);
  connect(widget->quickWindow(), &QQuickWindow::afterRendering, this, &PaintedWidget::schedule);
  schedule();
}

void PaintedWidget::schedule() {
  if (capturing_ || timer_.isActive()) {
    return;
  }
  const int passed =
      sinceLastFrame_.isValid() ? static_cast<int>(sinceLastFrame_.elapsed()) : frameMs_;
  timer_.start(std::clamp(frameMs_ - passed, 0, frameMs_));
}

void PaintedWidget::paint() {
  sinceLastFrame_.start();
  if (captureFrame() && frame_.accept()) {
    painted_(frame_);
  }
}

void PaintedWidget::paintAll() {
  if (frame_.size().isEmpty()) {
    return;
  }
  frame_.markAll();
  painted_(frame_);
}

bool PaintedWidget::captureFrame() {
  if (!guard_ || widget_->size().isEmpty() || !widget_->isVisible()) {
    return false;
  }
  const qreal ratio = widget_->devicePixelRatioF();
  QImage& target = frame_.next(widget_->size() * ratio);
  target.setDevicePixelRatio(ratio);
  capturing_ = true;
  // Copies the rendered contents; the page is not drawn again.
  widget_->render(&target, QPoint(), QRegion(), QWidget::RenderFlags());
  capturing_ = false;
  return true;
}

}  // namespace cef_qt
