// Notifications of the browser process.
#ifndef CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_
#define CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_

#include "include/cef_base.h"
#include "include/cef_command_line.h"

// Called on the UI thread.
class CefBrowserProcessHandler : public virtual CefBaseRefCounted {
 public:
  // The framework is ready to create browsers.
  virtual void OnContextInitialized() {}

  // A sub-process is about to start. Not called here, because Qt starts Chromium's sub-processes.
  virtual void OnBeforeChildProcessLaunch(CefRefPtr<CefCommandLine> /*command_line*/) {}

  // Another process was started with the same root cache path and exits. True if the application
  // has handled this.
  virtual bool OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> /*command_line*/,
                                           const CefString& /*current_directory*/) {
    return false;
  }
};

#endif  // CEF_INCLUDE_CEF_BROWSER_PROCESS_HANDLER_H_
