// The host of an off-screen browser.
#pragma once

#include "browser/browser_host.h"

namespace cef_qt {

// Passes the client's events to the browser's off-screen part: inside the call on the UI thread,
// from a task on other threads.
class OffScreenBrowserHost final : public BrowserHost {
 public:
  using BrowserHost::BrowserHost;

  void WasResized() override;
  void WasHidden(bool hidden) override;
  void NotifyScreenInfoChanged() override;
  void Invalidate(PaintElementType type) override;
  void SendKeyEvent(const CefKeyEvent& event) override;
  void SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                           int clickCount) override;
  void SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) override;
  void SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) override;
  void ImeSetComposition(const CefString& text,
                         const std::vector<CefCompositionUnderline>& underlines,
                         const CefRange& replacement_range,
                         const CefRange& selection_range) override;
  void ImeCommitText(const CefString& text, const CefRange& replacement_range,
                     int relative_cursor_pos) override;
  void ImeFinishComposingText(bool keep_selection) override;
  void ImeCancelComposition() override;
  void DragTargetDragEnter(CefRefPtr<CefDragData> data, const CefMouseEvent& event,
                           DragOperationsMask allowed) override;
  void DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed) override;
  void DragTargetDragLeave() override;
  void DragTargetDrop(const CefMouseEvent& event) override;
  void DragSourceEndedAt(int x, int y, DragOperationsMask op) override;
  void DragSourceSystemDragEnded() override;
};

// Allows browsers to be drawn off screen. Called once, before the first browser is created.
void enableOffScreenBrowsers();

}  // namespace cef_qt
