#pragma once

#include "osr/input/drag_contents.h"
#include "osr/view/osr_view.h"

namespace client {

// The drags of a view: those that begin in its page, and those that come over it. Every operation
// but the getters tells the browser, when there is one. Ownership: the view's, which must outlive
// it. Thread: UI.
class DragSession {
 public:
  explicit DragSession(OsrView& view) : view_(view) {}
  DragSession(const DragSession&) = delete;
  DragSession& operator=(const DragSession&) = delete;

  // As the source. `begin` only keeps what is dragged.
  void begin(CefRefPtr<CefDragData> data, cef_drag_operations_mask_t allowed);
  // The drag ended at a point of the view with the operation that the system reports.
  void endedAt(const OsrPoint& point, unsigned int operation);
  // Forgets a drag, as its end does, too.
  void resetDragDrop();

  // As the target. `items` is what the system offers; a drag that began here is known already.
  void entered(const CefMouseEvent& at, const DroppedItems& items,
               cef_drag_operations_mask_t sourceOperations);
  // Gives what to answer the system.
  cef_drag_operations_mask_t moved(const CefMouseEvent& at,
                                   cef_drag_operations_mask_t sourceOperations);
  void exited();
  // Always a success.
  bool performed(const CefMouseEvent& at);

  // Null while no drag runs that began in the view.
  CefRefPtr<CefDragData> currentDragData() const { return currentDragData_; }
  cef_drag_operations_mask_t currentAllowedOps() const { return currentAllowedOps_; }
  // What the browser chose last for the drag over the view; none before it chose and after the
  // drag.
  cef_drag_operations_mask_t currentDragOp() const { return currentDragOp_; }
  void setCurrentDragOp(cef_drag_operations_mask_t operation) { currentDragOp_ = operation; }

 private:
  CefRefPtr<CefBrowserHost> host() const;

  OsrView& view_;
  CefRefPtr<CefDragData> currentDragData_;
  cef_drag_operations_mask_t currentDragOp_ = DRAG_OPERATION_NONE;
  cef_drag_operations_mask_t currentAllowedOps_ = DRAG_OPERATION_NONE;
};

}  // namespace client
