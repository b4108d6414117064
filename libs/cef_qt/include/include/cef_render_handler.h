// Views of off-screen browsers.
#ifndef CEF_INCLUDE_CEF_RENDER_HANDLER_H_
#define CEF_INCLUDE_CEF_RENDER_HANDLER_H_

#include <vector>

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_drag_data.h"

// Called on the UI thread, for off-screen browsers only. Sizes are in view points unless a comment
// says otherwise.
class CefRenderHandler : public virtual CefBaseRefCounted {
 public:
  using DragOperation = cef_drag_operations_mask_t;
  using DragOperationsMask = cef_drag_operations_mask_t;
  using PaintElementType = cef_paint_element_type_t;
  using RectList = std::vector<CefRect>;
  using TextInputMode = cef_text_input_mode_t;

  virtual bool GetRootScreenRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& /*rect*/) {
    return false;
  }
  // Must set a non-empty rectangle.
  virtual void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) = 0;
  virtual bool GetScreenPoint(CefRefPtr<CefBrowser> /*browser*/, int /*viewX*/, int /*viewY*/,
                              int& /*screenX*/, int& /*screenY*/) {
    return false;
  }
  virtual bool GetScreenInfo(CefRefPtr<CefBrowser> /*browser*/, CefScreenInfo& /*screen_info*/) {
    return false;
  }
  virtual void OnPopupShow(CefRefPtr<CefBrowser> /*browser*/, bool /*show*/) {}
  virtual void OnPopupSize(CefRefPtr<CefBrowser> /*browser*/, const CefRect& /*rect*/) {}
  // `buffer` holds width * height BGRA pixels, top row first, valid during the call.
  virtual void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type,
                       const RectList& dirtyRects, const void* buffer, int width, int height) = 0;
  // True if the client runs the drag; it reports the end through DragSourceEndedAt.
  virtual bool StartDragging(CefRefPtr<CefBrowser> /*browser*/,
                             CefRefPtr<CefDragData> /*drag_data*/,
                             DragOperationsMask /*allowed_ops*/, int /*x*/, int /*y*/) {
    return false;
  }
  virtual void UpdateDragCursor(CefRefPtr<CefBrowser> /*browser*/, DragOperation /*operation*/) {}
  virtual void OnScrollOffsetChanged(CefRefPtr<CefBrowser> /*browser*/, double /*x*/,
                                     double /*y*/) {}
  // The composition, or the caret if there is none, has moved: its range in the field's text and
  // the bounds of its characters in the view.
  virtual void OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> /*browser*/,
                                            const CefRange& /*selected_range*/,
                                            const RectList& /*character_bounds*/) {}
  // The selection in the focused field has changed.
  virtual void OnTextSelectionChanged(CefRefPtr<CefBrowser> /*browser*/,
                                      const CefString& /*selected_text*/,
                                      const CefRange& /*selected_range*/) {}
  // The focus has moved to another kind of field; with NONE no text can be entered.
  virtual void OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> /*browser*/,
                                          TextInputMode /*input_mode*/) {}
};

#endif  // CEF_INCLUDE_CEF_RENDER_HANDLER_H_
