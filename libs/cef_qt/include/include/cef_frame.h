// A frame of a browser's page.
#ifndef CEF_INCLUDE_CEF_FRAME_H_
#define CEF_INCLUDE_CEF_FRAME_H_

#include "include/cef_base.h"
#include "include/cef_process_message.h"

class CefBrowser;

// Used on the UI thread (browser side) or the render thread (render side). Operations on a frame
// that is gone do nothing.
class CefFrame : public virtual CefBaseRefCounted {
 public:
  virtual bool IsMain() = 0;
  virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
  virtual CefString GetURL() = 0;
  virtual CefString GetName() = 0;
  virtual void LoadURL(const CefString& url) = 0;
  // Runs a script; scripts of one frame run in the order of the calls, each on its own, so that a
  // faulty one does not harm the next. Errors name `script_url` and count lines from `start_line`.
  virtual void ExecuteJavaScript(const CefString& code, const CefString& script_url,
                                 int start_line) = 0;
  virtual void Undo() = 0;
  virtual void Redo() = 0;
  virtual void Cut() = 0;
  virtual void Copy() = 0;
  virtual void Paste() = 0;
  virtual void Delete() = 0;
  virtual void SelectAll() = 0;
  // Sends a message to the other side; the message is used up.
  virtual void SendProcessMessage(CefProcessId target_process,
                                  CefRefPtr<CefProcessMessage> message) = 0;
};

#endif  // CEF_INCLUDE_CEF_FRAME_H_
