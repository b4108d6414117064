#include "osr/client_osr_handler.h"

#include "app/log/guarded.h"
#include "include/wrapper/cef_helpers.h"
#include "osr/input/text_input.h"
#include "osr/renderer/osr_renderer.h"

namespace client {

using zantrio::guarded;

ClientOSRHandler::~ClientOSRHandler() {
  guarded("ClientOSRHandler", [this] {
    if (const auto view = view_.lock()) {
      view->stopObservingScale();
    }
  });
}

bool ClientOSRHandler::GetRootScreenRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& /*rect*/) {
  return false;
}

void ClientOSRHandler::GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) {
  CEF_REQUIRE_UI_THREAD();
  rect.Set(0, 0, 1, 1);
  guarded("GetViewRect", [&] {
    const auto view = view_.lock();
    if (!view) {
      return;
    }
    const OsrSize bounds = view->bounds();
    const CefRect whole(0, 0, static_cast<int>(bounds.width), static_cast<int>(bounds.height));
    if (!whole.IsEmpty()) {
      rect = whole;
    }
  });
}

bool ClientOSRHandler::GetScreenPoint(CefRefPtr<CefBrowser> /*browser*/, int viewX, int viewY,
                                      int& screenX, int& screenY) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("GetScreenPoint", false, [&] {
    const auto view = view_.lock();
    if (!view) {
      return false;
    }
    const OsrPoint point = view->toScreen({static_cast<double>(viewX), static_cast<double>(viewY)});
    screenX = static_cast<int>(point.x);
    screenY = static_cast<int>(point.y);
    return true;
  });
}

bool ClientOSRHandler::GetScreenInfo(CefRefPtr<CefBrowser> /*browser*/, CefScreenInfo& info) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("GetScreenInfo", false, [&] {
    const auto view = view_.lock();
    const std::optional<OsrScreen> screen = view ? view->screen() : std::nullopt;
    if (!screen) {
      return false;
    }
    info.Set(view->deviceScaleFactor(), screen->depth, screen->depthPerComponent,
             screen->monochrome, screen->rect, screen->availableRect);
    return true;
  });
}

void ClientOSRHandler::OnPopupShow(CefRefPtr<CefBrowser> browser, bool show) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnPopupShow", [&] {
    const auto view = view_.lock();
    if (!view) {
      return;
    }
    if (!show) {
      view->renderer().ClearPopupRects();
      browser->GetHost()->Invalidate(PET_VIEW);
    }
    view->renderer().OnPopupShow(browser, show);
  });
}

void ClientOSRHandler::OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnPopupSize", [&] {
    if (const auto view = view_.lock()) {
      view->renderer().OnPopupSize(browser, view->convertRectToBacking(rect));
    }
  });
}

void ClientOSRHandler::OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type,
                               const RectList& dirtyRects, const void* buffer, int width,
                               int height) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnPaint", [&] {
    const auto view = view_.lock();
    if (!view) {
      return;
    }
    OsrRenderer& renderer = view->renderer();
    if (paintingPopup_) {
      renderer.OnPaint(browser, type, dirtyRects, buffer, width, height);
      return;
    }
    view->makeContextCurrent();
    renderer.OnPaint(browser, type, dirtyRects, buffer, width, height);
    if (type == PET_VIEW && !renderer.popupRect().IsEmpty()) {
      repaintPopup(browser);
    }
    renderer.Render();
    view->clearCurrentContext();
    view->flushContext();
  });
}

// Needed after each view paint, which overwrites the pop-up in the texture.
void ClientOSRHandler::repaintPopup(const CefRefPtr<CefBrowser>& browser) {
  paintingPopup_ = true;
  guarded("OnPaint", [&] { browser->GetHost()->Invalidate(PET_POPUP); });
  paintingPopup_ = false;
}

bool ClientOSRHandler::OnCursorChange(CefRefPtr<CefBrowser> /*browser*/, CefCursorHandle cursor,
                                      cef_cursor_type_t type, const CefCursorInfo& custom) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("OnCursorChange", false, [&] {
    const auto view = view_.lock();
    if (!view) {
      return false;
    }
    view->setCursor(cursor, type, custom);
    return true;
  });
}

bool ClientOSRHandler::StartDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> dragData,
                                     DragOperationsMask allowedOps, int x, int y) {
  CEF_REQUIRE_UI_THREAD();
  return guarded("StartDragging", false, [&] {
    const auto view = view_.lock();
    return view && view->startDragging(browser, dragData, allowedOps, x, y);
  });
}

void ClientOSRHandler::UpdateDragCursor(CefRefPtr<CefBrowser> /*browser*/,
                                        DragOperation operation) {
  CEF_REQUIRE_UI_THREAD();
  guarded("UpdateDragCursor", [&] {
    if (const auto view = view_.lock()) {
      view->setCurrentDragOperation(operation);
    }
  });
}

void ClientOSRHandler::OnScrollOffsetChanged(CefRefPtr<CefBrowser> /*browser*/, double /*x*/,
                                             double /*y*/) {}

void ClientOSRHandler::OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> /*browser*/,
                                                    const CefRange& /*range*/,
                                                    const RectList& characters) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnImeCompositionRangeChanged", [&] {
    if (const auto view = view_.lock()) {
      view->textInput().setCharacterBounds(characters);
    }
  });
}

void ClientOSRHandler::OnTextSelectionChanged(CefRefPtr<CefBrowser> /*browser*/,
                                              const CefString& text, const CefRange& range) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnTextSelectionChanged", [&] {
    if (const auto view = view_.lock()) {
      view->textInput().setSelection(text, range);
    }
  });
}

void ClientOSRHandler::OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> /*browser*/,
                                                  TextInputMode mode) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnVirtualKeyboardRequested", [&] {
    if (const auto view = view_.lock()) {
      view->textInput().setMode(mode);
    }
  });
}

void ClientOSRHandler::OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) {
  CEF_REQUIRE_UI_THREAD();
  guarded("OnBeforeClose", [&] {
    if (const auto view = view_.lock()) {
      view->browserClosed();
    }
  });
}

}  // namespace client
