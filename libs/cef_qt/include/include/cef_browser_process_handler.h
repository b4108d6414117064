// Notifications of the browser process.
#ifndef CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_
#define CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_command_line.h"

// Called on the UI thread.
class CefBrowserProcessHandler : public virtual CefBaseRefCounted {
 public:
  // The framework is ready: browsers can be made.
  virtual void OnContextInitialized() {}

  // Before a sub-process starts. Not called here: Chromium's sub-processes are started by Qt.
  virtual void OnBeforeChildProcessLaunch(CefRefPtr<CefCommandLine> /*command_line*/) {}

  // Another process was started with the same root cache path; it has ended. True when the
  // application has answered it.
  virtual bool OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> /*command_line*/,
                                           const CefString& /*current_directory*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_
