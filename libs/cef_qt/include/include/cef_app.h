// Process, start, message loop and shutdown of the framework.
#ifndef CEF_INCLUDE_CEF_APP_H_
#define CEF_INCLUDE_CEF_APP_H_

#include "include/cef_base.h"
#include "include/cef_browser_process_handler.h"
#include "include/cef_command_line.h"
#include "include/cef_render_process_handler.h"
#include "include/cef_resource_bundle_handler.h"
#include "include/cef_scheme.h"

// The program's application object. The framework holds a reference until CefShutdown.
class CefApp : public virtual CefBaseRefCounted {
 public:
  // On the thread of CefInitialize. Switches that are added for the browser process (empty type)
  // are Chromium's.
  virtual void OnBeforeCommandLineProcessing(const CefString& /*process_type*/,
                                             CefRefPtr<CefCommandLine> /*command_line*/) {}
  virtual void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> /*registrar*/) {}
  virtual CefRefPtr<CefResourceBundleHandler> GetResourceBundleHandler() { return nullptr; }
  virtual CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() { return nullptr; }
  virtual CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() { return nullptr; }
};

// The first call of every process. Returns −1 at once in the browser process. Runs a sub-process
// (`--type=…`) and returns its exit code.
int CefExecuteProcess(const CefMainArgs& args, CefRefPtr<CefApp> application,
                      void* windows_sandbox_info);

// Starts the framework on the calling thread, which becomes TID_UI. Once per process. False if it
// cannot start or if another process holds the same root cache path; that process is notified and
// CefGetExitCode returns CEF_RESULT_CODE_NORMAL_EXIT_PROCESS_NOTIFIED.
bool CefInitialize(const CefMainArgs& args, const CefSettings& settings,
                   CefRefPtr<CefApp> application, void* windows_sandbox_info);

// Why CefInitialize failed; 0 if it succeeded.
int CefGetExitCode();

// Runs until CefQuitMessageLoop. UI thread.
void CefRunMessageLoop();
// Ends the loop once the current work is done. UI thread.
void CefQuitMessageLoop();

// Ends the framework. Open browsers are closed without asking and queued tasks are released. UI
// thread, outside the loop. No framework object may be used afterwards.
void CefShutdown();

#endif  // CEF_INCLUDE_CEF_APP_H_
