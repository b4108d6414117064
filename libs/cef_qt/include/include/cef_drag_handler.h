// Drags that enter a browser's window.
#ifndef CEF_INCLUDE_CEF_DRAG_HANDLER_H_
#define CEF_INCLUDE_CEF_DRAG_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_drag_data.h"

// Called on the UI thread.
class CefDragHandler : public virtual CefBaseRefCounted {
 public:
  using DragOperationsMask = cef_drag_operations_mask_t;

  // True hides the drag from the page.
  virtual bool OnDragEnter(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefDragData> /*dragData*/,
                           DragOperationsMask /*mask*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_DRAG_HANDLER_H_
