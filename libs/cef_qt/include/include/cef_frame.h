// A frame of a browser's page.
#ifndef CEF_INCLUDE_CEF_FRAME_H_
#define CEF_INCLUDE_CEF_FRAME_H_

#include "include/cef_base.h"
#include "include/cef_process_message.h"

class CefBrowser;

// UI thread (browser side) or TID_RENDERER (render side). Methods have no effect once the frame is
// gone.
class CefFrame : public virtual CefBaseRefCounted {
 public:
  virtual bool IsMain() = 0;
  virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
  // The frame around this one; null for a main frame.
  virtual CefRefPtr<CefFrame> GetParent() { return nullptr; }
  virtual CefString GetURL() = 0;
  virtual CefString GetName() = 0;
  virtual void LoadURL(const CefString& url) = 0;
  // Runs a script. The scripts of a frame run in the order of the calls, and an error in one does
  // not affect the next. Errors name `script_url` and count lines from `start_line`.
  virtual void ExecuteJavaScript(const CefString& code, const CefString& script_url,
                                 int start_line) = 0;
  virtual void Undo() = 0;
  virtual void Redo() = 0;
  virtual void Cut() = 0;
  virtual void Copy() = 0;
  virtual void Paste() = 0;
  virtual void Delete() = 0;
  virtual void SelectAll() = 0;
  // Sends a message to the other side. The message becomes invalid.
  virtual void SendProcessMessage(CefProcessId target_process,
                                  CefRefPtr<CefProcessMessage> message) = 0;
};

#endif  // CEF_INCLUDE_CEF_FRAME_H_
