// The host interface of a browser.
#pragma once

#include "browser/browser_impl.h"
#include "include/cef_browser.h"

namespace cef_qt {

// Any thread.
class BrowserHost : public CefBrowserHost {
 public:
  explicit BrowserHost(CefRefPtr<Browser> browser) : browser_(std::move(browser)) {}

  CefRefPtr<CefBrowser> GetBrowser() override { return browser_; }
  CefRefPtr<CefClient> GetClient() override { return browser_->client(); }
  void CloseBrowser(bool force_close) override;
  CefWindowHandle GetWindowHandle() override;
  void SetFocus(bool focus) override;
  CefRefPtr<CefNavigationEntry> GetVisibleNavigationEntry() override;

  // Without effect on browsers in windows of their own.
  void WasResized() override {}
  void WasHidden(bool /*hidden*/) override {}
  void NotifyScreenInfoChanged() override {}
  void Invalidate(PaintElementType /*type*/) override {}
  void SendKeyEvent(const CefKeyEvent& /*event*/) override {}
  void SendMouseClickEvent(const CefMouseEvent& /*event*/, MouseButtonType /*type*/,
                           bool /*mouseUp*/, int /*clickCount*/) override {}
  void SendMouseMoveEvent(const CefMouseEvent& /*event*/, bool /*mouseLeave*/) override {}
  void SendMouseWheelEvent(const CefMouseEvent& /*event*/, int /*deltaX*/,
                           int /*deltaY*/) override {}
  void ImeSetComposition(const CefString& /*text*/,
                         const std::vector<CefCompositionUnderline>& /*underlines*/,
                         const CefRange& /*replacement_range*/,
                         const CefRange& /*selection_range*/) override {}
  void ImeCommitText(const CefString& /*text*/, const CefRange& /*replacement_range*/,
                     int /*relative_cursor_pos*/) override {}
  void ImeFinishComposingText(bool /*keep_selection*/) override {}
  void ImeCancelComposition() override {}
  void DragTargetDragEnter(CefRefPtr<CefDragData> /*data*/, const CefMouseEvent& /*event*/,
                           DragOperationsMask /*allowed*/) override {}
  void DragTargetDragOver(const CefMouseEvent& /*event*/, DragOperationsMask /*allowed*/) override {
  }
  void DragTargetDragLeave() override {}
  void DragTargetDrop(const CefMouseEvent& /*event*/) override {}
  void DragSourceEndedAt(int /*x*/, int /*y*/, DragOperationsMask /*op*/) override {}
  void DragSourceSystemDragEnded() override {}

 protected:
  const CefRefPtr<Browser>& browser() const { return browser_; }

 private:
  const CefRefPtr<Browser> browser_;
  IMPLEMENT_REFCOUNTING(BrowserHost);
};

}  // namespace cef_qt
