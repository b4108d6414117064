// The client of a browser.
#ifndef CEF_INCLUDE_CEF_CLIENT_H_
#define CEF_INCLUDE_CEF_CLIENT_H_

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_context_menu_handler.h"
#include "include/cef_dialog_handler.h"
#include "include/cef_display_handler.h"
#include "include/cef_download_handler.h"
#include "include/cef_drag_handler.h"
#include "include/cef_find_handler.h"
#include "include/cef_focus_handler.h"
#include "include/cef_frame.h"
#include "include/cef_jsdialog_handler.h"
#include "include/cef_keyboard_handler.h"
#include "include/cef_life_span_handler.h"
#include "include/cef_load_handler.h"
#include "include/cef_process_message.h"
#include "include/cef_render_handler.h"
#include "include/cef_request_handler.h"

// Returns the handlers of a browser (null for the default behaviour) and receives the render side's
// messages. Called on the UI thread. The browser holds a reference until after OnBeforeClose.
class CefClient : public virtual CefBaseRefCounted {
 public:
  virtual CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() { return nullptr; }
  virtual CefRefPtr<CefDialogHandler> GetDialogHandler() { return nullptr; }
  virtual CefRefPtr<CefDisplayHandler> GetDisplayHandler() { return nullptr; }
  virtual CefRefPtr<CefDownloadHandler> GetDownloadHandler() { return nullptr; }
  virtual CefRefPtr<CefDragHandler> GetDragHandler() { return nullptr; }
  virtual CefRefPtr<CefFindHandler> GetFindHandler() { return nullptr; }
  virtual CefRefPtr<CefFocusHandler> GetFocusHandler() { return nullptr; }
  virtual CefRefPtr<CefJSDialogHandler> GetJSDialogHandler() { return nullptr; }
  virtual CefRefPtr<CefKeyboardHandler> GetKeyboardHandler() { return nullptr; }
  virtual CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() { return nullptr; }
  virtual CefRefPtr<CefLoadHandler> GetLoadHandler() { return nullptr; }
  virtual CefRefPtr<CefRenderHandler> GetRenderHandler() { return nullptr; }
  virtual CefRefPtr<CefRequestHandler> GetRequestHandler() { return nullptr; }

  // True if the message was handled.
  virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/,
                                        CefRefPtr<CefFrame> /*frame*/,
                                        CefProcessId /*source_process*/,
                                        CefRefPtr<CefProcessMessage> /*message*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_CLIENT_H_
