// Drag and drop of an off-screen browser.
#pragma once

#include <QMimeData>
#include <QPointF>
#include <Qt>
#include <memory>

#include "include/cef_drag_data.h"
#include "include/internal/cef_types_wrappers.h"

class QDrag;
class QEvent;
class QEventLoop;

namespace cef_qt {

class OffScreenBrowser;

// As the target, passes the client's drag on to the page. As the source, has the client run a drag
// that the page began while Chromium waits for its end. Owned by the off-screen browser. UI thread.
class OffScreenDrag {
 public:
  explicit OffScreenDrag(OffScreenBrowser& browser);
  ~OffScreenDrag();
  OffScreenDrag(const OffScreenDrag&) = delete;
  OffScreenDrag& operator=(const OffScreenDrag&) = delete;

  void enter(const CefRefPtr<CefDragData>& data, const CefMouseEvent& event,
             cef_drag_operations_mask_t allowed);
  void over(const CefMouseEvent& event, cef_drag_operations_mask_t allowed);
  void leave();
  void drop(const CefMouseEvent& event);

  // Runs a drag of the page until the client reports its end. Called inside Chromium; a nested loop
  // keeps Chromium running. Returns the action that was taken.
  Qt::DropAction run(const QDrag& drag, Qt::DropActions supported);
  void endedAt(cef_drag_operations_mask_t operation);
  void systemDragEnded();
  // Whether a drag of the page is running.
  bool isRunning() const { return loop_ != nullptr; }
  // Ends a running drag without an action.
  void cancel();

 private:
  void deliver(QEvent& event);
  bool startAtClient(const CefRefPtr<CefDragData>& data, Qt::DropActions supported,
                     const QPoint& start);
  void reportOperation(bool accepted, Qt::DropAction action);

  OffScreenBrowser& browser_;
  std::unique_ptr<QMimeData> dragged_;  // over the page; null if there is none
  Qt::DropActions allowed_;
  Qt::DropAction result_ = Qt::IgnoreAction;
  QEventLoop* loop_ = nullptr;  // while a drag of the page runs
  const QMimeData* own_ = nullptr;
};

}  // namespace cef_qt
