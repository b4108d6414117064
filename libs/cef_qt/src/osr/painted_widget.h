// The frames of one widget that a page is drawn in.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QQuickWidget>
#include <QTimer>
#include <functional>

#include "osr/frame_buffer.h"

namespace cef_qt {

// Watches a widget, and hands on every frame in which something is new, at most so often a second.
// UI thread; the functions are called from tasks of the loop or inside paintAll.
class PaintedWidget final : public QObject {
  Q_OBJECT

 public:
  using Painted = std::function<void(const FrameBuffer&)>;

  PaintedWidget(QQuickWidget* widget, int framesPerSecond, Painted painted);

  // Null when it is gone. While it is being destroyed, only its address means anything.
  QQuickWidget* widget() const { return exists_ ? widget_ : nullptr; }
  // Hands on the whole of the latest frame at once; nothing when there is none yet.
  void paintAll();

 private:
  // A frame was drawn; it is taken soon.
  void schedule();
  void paint();
  bool takeFrame();

  QQuickWidget* const widget_;
  // Not of the widget's own type, which it has lost by the time that its destruction is told.
  const QPointer<QObject> exists_;
  const int frameMs_;
  const Painted painted_;
  FrameBuffer frame_;
  QTimer timer_;
  QElapsedTimer sinceLast_;
  bool taking_ = false;
};

}  // namespace cef_qt
