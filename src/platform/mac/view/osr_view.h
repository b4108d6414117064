#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "osr/input/text_input.h"
#include "osr/renderer/osr_renderer.h"
#include "osr/view/osr_view.h"

@class ClientOpenGLView;

namespace client {

// Adapts a ClientOpenGLView to OsrView.
//
// Ownership: the view's, which it does not own and which detaches it on deallocation. Thread: UI.
class OsrViewMac final : public OsrView {
 public:
  OsrViewMac(ClientOpenGLView* view, bool transparent, bool showUpdateRect);
  ~OsrViewMac() override;

  // Destroys the renderer, for which the view's context must be current, and clears the view.
  void detach();
  // Nil after detach.
  ClientOpenGLView* view() const { return view_; }
  void setBrowserProvider(BrowserProvider provider) { browserProvider_ = std::move(provider); }

  OsrRenderer& renderer() override { return *renderer_; }
  TextInput& textInput() override { return text_; }
  CefRefPtr<CefBrowser> browser() const override;
  void browserClosed() override;
  OsrSize bounds() const override;
  OsrPoint toScreen(const OsrPoint& point) const override;
  std::optional<OsrScreen> screen() const override;
  float deviceScaleFactor() const override;
  CefRect convertRectToBacking(const CefRect& points) const override;
  CefRect convertRectFromBacking(const CefRect& pixels) const override;
  void stopObservingScale() override;
  void redraw() override;
  void makeContextCurrent() override;
  void clearCurrentContext() override;
  void flushContext() override;
  void setCursor(CefCursorHandle cursor, cef_cursor_type_t type,
                 const CefCursorInfo& custom) override;
  void textInputChanged() override;
  bool startDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> data,
                     cef_drag_operations_mask_t allowed, int x, int y) override;
  void setCurrentDragOperation(cef_drag_operations_mask_t operation) override;

 private:
  ClientOpenGLView* view_;
  BrowserProvider browserProvider_;
  std::unique_ptr<OsrRenderer> renderer_;
  TextInput text_{*this};
};

}  // namespace client
