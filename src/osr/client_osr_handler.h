#pragma once

#include <memory>

#include "include/cef_base.h"
#include "osr/render_handler.h"
#include "osr/view/osr_view.h"

namespace client {

// Connects an off-screen browser to a view: answers the engine's queries about the view and
// forwards paints, cursors, drags and input method state to it. Without a view, queries return
// false and notifications do nothing.
//
// Ownership: held by the browser's client; the view is held weakly. Thread: UI. Errors: an
// exception of the view is logged under the operation's name and does not reach the engine.
class ClientOSRHandler : public RenderHandler {
 public:
  explicit ClientOSRHandler(std::weak_ptr<OsrView> view) : view_(std::move(view)) {}
  ClientOSRHandler(const ClientOSRHandler&) = delete;
  ClientOSRHandler& operator=(const ClientOSRHandler&) = delete;

  bool GetRootScreenRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
  // The engine requires a non-empty rectangle: without a view, or with an empty one, it is 1 × 1.
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
  // True while a view paint repaints the pop-up: the engine then calls OnPaint recursively.
  bool paintingPopup_ = false;

  IMPLEMENT_REFCOUNTING(ClientOSRHandler);
};

// Ties the render handler to its view when a browser is created. Thread: UI.
class OSRWindow : public CefBaseRefCounted {
 public:
  static CefRefPtr<OSRWindow> Create(const std::shared_ptr<OsrView>& view) {
    return new OSRWindow(view);
  }
  OSRWindow(const OSRWindow&) = delete;
  OSRWindow& operator=(const OSRWindow&) = delete;

  // Returned to the framework by the browser's client.
  CefRefPtr<RenderHandler> GetRenderHandler() const { return handler_; }

 private:
  explicit OSRWindow(const std::shared_ptr<OsrView>& view) : handler_(new ClientOSRHandler(view)) {}
  ~OSRWindow() override = default;

  const CefRefPtr<RenderHandler> handler_;

  IMPLEMENT_REFCOUNTING(OSRWindow);
};

}  // namespace client
