// A browser's host.
#pragma once

#include "browser/browser_impl.h"
#include "include/cef_browser.h"

namespace cef_qt {

class BrowserHost final : public CefBrowserHost {
 public:
  explicit BrowserHost(CefRefPtr<Browser> browser) : browser_(std::move(browser)) {}

  CefRefPtr<CefBrowser> GetBrowser() override { return browser_; }
  CefRefPtr<CefClient> GetClient() override { return browser_->client(); }
  void CloseBrowser(bool force_close) override;
  CefWindowHandle GetWindowHandle() override;
  void SetFocus(bool focus) override;

  // Off-screen browsers are not served yet: these do nothing.
  void WasResized() override {}
  void WasHidden(bool) override {}
  void NotifyScreenInfoChanged() override {}
  void Invalidate(PaintElementType) override {}
  void SendKeyEvent(const CefKeyEvent&) override {}
  void SendMouseClickEvent(const CefMouseEvent&, MouseButtonType, bool, int) override {}
  void SendMouseMoveEvent(const CefMouseEvent&, bool) override {}
  void SendMouseWheelEvent(const CefMouseEvent&, int, int) override {}
  void DragTargetDragEnter(CefRefPtr<CefDragData>, const CefMouseEvent&,
                           DragOperationsMask) override {}
  void DragTargetDragOver(const CefMouseEvent&, DragOperationsMask) override {}
  void DragTargetDragLeave() override {}
  void DragTargetDrop(const CefMouseEvent&) override {}
  void DragSourceEndedAt(int, int, DragOperationsMask) override {}
  void DragSourceSystemDragEnded() override {}

 private:
  const CefRefPtr<Browser> browser_;
  IMPLEMENT_REFCOUNTING(BrowserHost);
};

}  // namespace cef_qt
