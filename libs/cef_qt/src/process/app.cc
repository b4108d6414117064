#include "include/cef_app.h"
#include "process/framework.h"

using cef_qt::Framework;

bool CefInitialize(const CefMainArgs& args, const CefSettings& settings,
                   CefRefPtr<CefApp> application, void* /*windows_sandbox_info*/) {
  return Framework::start(args, settings, application);
}

int CefGetExitCode() {
  return Framework::exitCode();
}

void CefRunMessageLoop() {
  Framework::run();
}

void CefQuitMessageLoop() {
  Framework::quit();
}

void CefShutdown() {
  Framework::stop();
}
