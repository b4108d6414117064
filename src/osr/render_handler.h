#pragma once

#include "include/cef_display_handler.h"
#include "include/cef_render_handler.h"

namespace client {

// The render and display handler that a client gives the framework for an off-screen browser; the
// client also reports the browser's end to it. Thread: UI.
class RenderHandler : public CefRenderHandler, public CefDisplayHandler {
 public:
  // The browser is about to close and must not be used any more.
  virtual void OnBeforeClose(CefRefPtr<CefBrowser> browser) = 0;
};

}  // namespace client
