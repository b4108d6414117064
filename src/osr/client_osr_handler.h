#pragma once

#include <memory>

#include "osr/render_handler.h"
#include "osr/view/osr_view.h"

namespace client {

// Serves an off-screen browser from a view: answers the engine's questions about it, and passes
// paints, cursors, drags and what input methods need on to it. Without the view, queries answer
// false and the rest does nothing.
//
// Ownership: held by the browser's client; the view is held weakly. Thread: UI. Errors: an
// exception of the view is logged under the operation's name and does not reach the engine.
class ClientOSRHandler : public RenderHandler {
 public:
  explicit ClientOSRHandler(std::weak_ptr<OsrView> view) : view_(std::move(view)) {}
  ClientOSRHandler(const ClientOSRHandler&) = delete;
  ClientOSRHandler& operator=(const ClientOSRHandler&) = delete;

  bool GetRootScreenRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
  // Never left empty, as the engine asks: without a view, or with one of no size, one point.
  void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
  bool GetScreenPoint(CefRefPtr<CefBrowser> browser, int viewX, int viewY, int& screenX,
                      int& screenY) override;
  bool GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& info) override;
  void OnPopupShow(CefRefPtr<CefBrowser> browser, bool show) override;
  void OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) override;
  void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;
  bool OnCursorChange(CefRefPtr<CefBrowser> browser, CefCursorHandle cursor, cef_cursor_type_t type,
                      const CefCursorInfo& custom) override;
  bool StartDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> dragData,
                     DragOperationsMask allowedOps, int x, int y) override;
  void UpdateDragCursor(CefRefPtr<CefBrowser> browser, DragOperation operation) override;
  void OnScrollOffsetChanged(CefRefPtr<CefBrowser> browser, double x, double y) override;
  void OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> browser, const CefRange& range,
                                    const RectList& characters) override;
  void OnTextSelectionChanged(CefRefPtr<CefBrowser> browser, const CefString& text,
                              const CefRange& range) override;
  void OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> browser, TextInputMode mode) override;
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

 protected:
  ~ClientOSRHandler() override;

 private:
  void repaintPopup(const CefRefPtr<CefBrowser>& browser);

  const std::weak_ptr<OsrView> view_;
  // The engine paints the pop-up inside the paint of the view that asked for it.
  bool paintingPopup_ = false;

  IMPLEMENT_REFCOUNTING(ClientOSRHandler);
};

}  // namespace client
