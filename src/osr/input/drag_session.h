#pragma once

#include <optional>
#include <string>
#include <vector>

#include "include/cef_drag_data.h"
#include "osr/view/osr_view.h"

namespace client {

// A drag into the view, as the system offers it. In UTF-8.
struct DroppedItems {
  std::optional<std::string> text;
  std::vector<std::string> paths;
};

// The drags of a view: out of its page and into it. Every operation except the getters notifies the
// browser, if there is one. Ownership: the view's, which must outlive it. Thread: UI.
class DragSession {
 public:
  explicit DragSession(OsrView& view) : view_(view) {}
  DragSession(const DragSession&) = delete;
  DragSession& operator=(const DragSession&) = delete;

  // Drags out of the page. `begin` only stores the dragged data.
  void begin(CefRefPtr<CefDragData> data, cef_drag_operations_mask_t allowed);
  // `operation`: as the system reports it.
  void endedAt(const OsrPoint& point, unsigned int operation);
  // Clears the current drag; endedAt does so too.
  void resetDragDrop();

  // Drags into the page. `items` is ignored for a drag that began in this view, whose data is
  // known.
  void entered(const CefMouseEvent& at, const DroppedItems& items,
               cef_drag_operations_mask_t sourceOperations);
  // Returns the operation to report to the system.
  cef_drag_operations_mask_t moved(const CefMouseEvent& at,
                                   cef_drag_operations_mask_t sourceOperations);
  void exited();
  // Always returns true.
  bool performed(const CefMouseEvent& at);

  // Null unless a drag out of the page is running.
  CefRefPtr<CefDragData> currentDragData() const { return currentDragData_; }
  cef_drag_operations_mask_t currentAllowedOps() const { return currentAllowedOps_; }
  // The browser's latest choice for the drag over the view; none before its first choice and after
  // the drag.
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
