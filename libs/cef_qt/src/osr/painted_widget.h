// The frames of a widget that shows a page or a pop-up.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QQuickWidget>
#include <QTimer>
#include <functional>

#include "osr/frame_buffer.h"

namespace cef_qt {

// Calls `painted` for every frame that differs from the one before, at most `framesPerSecond` times
// a second, from a timer or inside paintAll(). UI thread.
class PaintedWidget final : public QObject {
  Q_OBJECT

 public:
  using Painted = std::function<void(const FrameBuffer&)>;

  PaintedWidget(QQuickWidget* widget, int framesPerSecond, Painted painted);

  // Null once the widget is destroyed. While it is being destroyed, the pointer may be compared
  // but not dereferenced.
  QQuickWidget* widget() const { return guard_ ? widget_ : nullptr; }
  // Calls `painted` with the whole latest frame, if there is one.
  void paintAll();

 private:
  void schedule();
  void paint();
  bool captureFrame();

  QQuickWidget* const widget_;
  // Of type QObject, because the widget is no more than that when destroyed() is emitted.
  const QPointer<QObject> guard_;
  const int frameMs_;
  const Painted painted_;
  FrameBuffer frame_;
  QTimer timer_;
  QElapsedTimer sinceLastFrame_;
  bool capturing_ = false;
};

}  // namespace cef_qt
