// A recording view and browser.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "osr/input/text_input.h"
#include "osr/renderer/osr_renderer.h"
#include "osr/view/osr_view.h"
#include "src/fakes/fake_browser.h"

namespace client::test {

using zantrio::test::FakeBrowser;
using zantrio::test::FakeHost;

// Records every call as a line, as in "click 10,20 flags 16 left down x2".
class RecordingHost : public FakeHost {
 public:
  void NotifyScreenInfoChanged() override { lines.emplace_back("screen info"); }
  void Invalidate(PaintElementType type) override;
  void SendKeyEvent(const CefKeyEvent& event) override;
  void SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                           int clickCount) override;
  void SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) override;
  void SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) override;
  void ImeSetComposition(const CefString& text,
                         const std::vector<CefCompositionUnderline>& underlines,
                         const CefRange& replaced, const CefRange& selected) override;
  void ImeCommitText(const CefString& text, const CefRange& replaced, int cursor) override;
  void ImeFinishComposingText(bool /*keepSelection*/) override { lines.emplace_back("finish"); }
  void ImeCancelComposition() override { lines.emplace_back("cancel"); }
  void DragTargetDragEnter(CefRefPtr<CefDragData> data, const CefMouseEvent& event,
                           DragOperationsMask allowed) override;
  void DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed) override;
  void DragTargetDragLeave() override { lines.emplace_back("leave"); }
  void DragTargetDrop(const CefMouseEvent& event) override;
  void DragSourceEndedAt(int x, int y, DragOperationsMask op) override;
  void DragSourceSystemDragEnded() override { lines.emplace_back("drag over"); }

  std::vector<std::string> lines;
  CefRefPtr<CefDragData> entered;
  std::function<void(PaintElementType)> onInvalidate;
};

// 200 × 100 points at (1000, 500) of its screen, two pixels a point.
class FakeOsrView : public OsrView {
 public:
  FakeOsrView() { fakeBrowser->host = host; }

  OsrRenderer& renderer() override { return osrRenderer; }
  TextInput& textInput() override { return text; }
  CefRefPtr<CefBrowser> browser() const override { return hasBrowser ? fakeBrowser : nullptr; }
  void browserClosed() override { hasBrowser = false; }
  OsrSize bounds() const override { return size; }
  OsrPoint toScreen(const OsrPoint& point) const override {
    return {point.x + 1000.9, point.y + 500.9};
  }
  std::optional<OsrScreen> screen() const override { return osrScreen; }
  float deviceScaleFactor() const override { return 2; }
  CefRect convertRectToBacking(const CefRect& r) const override {
    return {r.x * 2, r.y * 2, r.width * 2, r.height * 2};
  }
  CefRect convertRectFromBacking(const CefRect& r) const override {
    return {r.x / 2, r.y / 2, r.width / 2, r.height / 2};
  }
  void stopObservingScale() override { lines.emplace_back("stop observing"); }
  void redraw() override { lines.emplace_back("redraw"); }
  void makeContextCurrent() override { lines.emplace_back("make current"); }
  void clearCurrentContext() override { lines.emplace_back("clear current"); }
  void flushContext() override { lines.emplace_back("flush"); }
  void setCursor(CefCursorHandle, cef_cursor_type_t type, const CefCursorInfo&) override {
    cursor = type;
  }
  void textInputChanged() override { lines.emplace_back("text input changed"); }
  bool startDragging(CefRefPtr<CefBrowser>, CefRefPtr<CefDragData>, cef_drag_operations_mask_t,
                     int x, int y) override {
    return x > 0 && y > 0;
  }
  void setCurrentDragOperation(cef_drag_operations_mask_t operation) override {
    dragOperation = operation;
  }

  // Gives the renderer a page of this size, in pixels, without drawing it.
  void paintPage(int width, int height);

  CefRefPtr<RecordingHost> host = new RecordingHost;
  CefRefPtr<FakeBrowser> fakeBrowser = new FakeBrowser;
  bool hasBrowser = true;
  OsrRenderer osrRenderer{false, false};
  TextInput text{*this};
  OsrSize size{200.7, 100.2};
  std::optional<OsrScreen> osrScreen;
  cef_cursor_type_t cursor = CT_POINTER;
  cef_drag_operations_mask_t dragOperation = DRAG_OPERATION_NONE;
  std::vector<std::string> lines;
};

}  // namespace client::test
