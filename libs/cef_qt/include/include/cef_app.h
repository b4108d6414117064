// Process, start, message loop and shutdown of the framework.
#ifndef CEF_INCLUDE_CEF_APP_H_
#define CEF_INCLUDE_CEF_APP_H_

#include "include/cef_base.h"
#include "include/cef_browser_process_handler.h"
#include "include/cef_command_line.h"
#include "include/cef_render_process_handler.h"
#include "include/cef_resource_bundle_handler.h"
#include "include/cef_scheme.h"

// The program's application object, kept by the framework until CefShutdown.
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

// First call of every process: −1 at once in the browser process; a sub-process (`--type=…`) is run
// and its exit code given.
int CefExecuteProcess(const CefMainArgs& args, CefRefPtr<CefApp> application,
                      void* windows_sandbox_info);

// Starts the framework on the calling thread, which becomes TID_UI; once in a process. False when
// it cannot start, and when another process holds the same root cache path: that one is told of
// this start, and CefGetExitCode says so.
bool CefInitialize(const CefMainArgs& args, const CefSettings& settings,
                   CefRefPtr<CefApp> application, void* windows_sandbox_info);

// Why CefInitialize failed: 0 when it did not.
int CefGetExitCode();

// Runs until CefQuitMessageLoop. UI thread.
void CefRunMessageLoop();
// Ends the loop once the present work is done. UI thread.
void CefQuitMessageLoop();

// Ends the framework: browsers that are left are closed without asking, tasks that have not run are
// released. UI thread, outside the loop; no reference to a framework object may be used after it.
void CefShutdown();

#endif  // CEF_INCLUDE_CEF_APP_H_
