#pragma once

#include "include/cef_display_handler.h"
#include "include/cef_render_handler.h"

namespace client {

// What a browser client is given to draw its browser off screen: it hands the framework this object
// as render handler and as display handler, and tells it of the browser's end. Thread: UI.
class RenderHandler : public CefRenderHandler, public CefDisplayHandler {
 public:
  // The browser is about to close; it must not be used any more.
  virtual void OnBeforeClose(CefRefPtr<CefBrowser> browser) = 0;
};

}  // namespace client
