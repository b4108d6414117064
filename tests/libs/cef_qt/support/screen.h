// The view of an off-screen browser in a test.
#pragma once

#include <string>
#include <vector>

#include "include/cef_display_handler.h"
#include "include/cef_render_handler.h"
#include "support/test_browser.h"

namespace cef_test {

// A view of 300 × 200 points. Records the calls and assembles the latest picture from the dirty
// rectangles.
class Screen final : public CefRenderHandler, public CefDisplayHandler {
 public:
  // The position of the view on the screen.
  static constexpr cef_point_t kPosition{40, 30};

  struct Paint {
    PaintElementType type;
    RectList dirty;
    int width;
    int height;
  };

  void GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) override {
    rect.Set(0, 0, size.width, size.height);
  }
  bool GetScreenPoint(CefRefPtr<CefBrowser> /*browser*/, int viewX, int viewY, int& screenX,
                      int& screenY) override {
    screenX = viewX + kPosition.x;
    screenY = viewY + kPosition.y;
    return true;
  }
  bool GetScreenInfo(CefRefPtr<CefBrowser> /*browser*/, CefScreenInfo& info) override {
    info.Set(scale, 24, 8, 0, CefRect(0, 0, 1000, 800), CefRect(0, 0, 1000, 800));
    return true;
  }
  void OnPopupShow(CefRefPtr<CefBrowser> /*browser*/, bool show) override {
    popupShown = show;
    popupCount += show ? 1 : 0;
  }
  void OnPopupSize(CefRefPtr<CefBrowser> /*browser*/, const CefRect& rect) override {
    popupRect = rect;
  }
  void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override;
  bool StartDragging(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefDragData> data,
                     DragOperationsMask /*allowed*/, int /*x*/, int /*y*/) override {
    dragged = data;
    return takesDrags;
  }
  void UpdateDragCursor(CefRefPtr<CefBrowser> /*browser*/, DragOperation operation) override {
    dragOperation = operation;
  }
  bool OnCursorChange(CefRefPtr<CefBrowser> /*browser*/, CefCursorHandle /*cursor*/,
                      cef_cursor_type_t type, const CefCursorInfo& /*info*/) override {
    cursor = type;
    return true;
  }
  void OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> /*browser*/, const CefRange& /*range*/,
                                    const RectList& bounds) override {
    caret = bounds.at(0);
  }
  void OnTextSelectionChanged(CefRefPtr<CefBrowser> /*browser*/, const CefString& text,
                              const CefRange& range) override {
    selectedText = text.ToString();
    selection = range;
  }
  void OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> /*browser*/, TextInputMode mode) override {
    textMode = mode;
  }

  // "rrggbb" of a pixel; empty outside the picture.
  std::string colorAt(int x, int y) const;
  bool becomes(int x, int y, const std::string& color) const;

  CefSize size{300, 200};
  float scale = 1;
  std::vector<Paint> paints;  // of the page
  std::vector<Paint> popupPaints;
  bool popupShown = false;
  int popupCount = 0;  // shown so far
  CefRect popupRect;
  cef_cursor_type_t cursor = CT_POINTER;
  cef_text_input_mode_t textMode = CEF_TEXT_INPUT_MODE_NONE;
  CefRect caret;
  std::string selectedText;
  CefRange selection;
  DragOperation dragOperation = DRAG_OPERATION_NONE;
  CefRefPtr<CefDragData> dragged;  // of a drag that the page began
  bool takesDrags = true;
  CefSize pictureSize;

 private:
  std::vector<uint32_t> picture_;
  IMPLEMENT_REFCOUNTING(Screen);
};

// An off-screen browser with its screen.
class OffScreenPage {
 public:
  explicit OffScreenPage(const std::string& html, CefRefPtr<Screen> screen = new Screen);

  Screen& screen() { return *screen_; }
  TestBrowser& page() { return page_; }
  CefRefPtr<CefBrowserHost> host() { return page_.browser()->GetHost(); }

  void move(int x, int y, uint32_t flags = 0);
  void press(int x, int y, int clickCount = 1);
  void release(int x, int y, int clickCount = 1);
  void click(int x, int y, int clickCount = 1);
  void type(char16_t character, int windowsKeyCode);

 private:
  CefRefPtr<Screen> screen_;
  TestBrowser page_;
};

}  // namespace cef_test
