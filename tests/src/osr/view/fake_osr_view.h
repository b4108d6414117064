// A recording view.
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

// 200 × 100 points at (1000, 500) of its screen, two pixels a point.
class FakeOsrView : public OsrView {
 public:
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

  CefRefPtr<FakeBrowser> fakeBrowser = new FakeBrowser;
  CefRefPtr<FakeHost> host = fakeBrowser->host;
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
