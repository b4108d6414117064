// The application object and the command line of the running framework.
#pragma once

#include "include/cef_app.h"
#include "include/cef_command_line.h"

namespace cef_qt {

// Set by the start and the end of the framework. Readable from any thread; null while the framework
// is not running.
class FrameworkState {
 public:
  static void set(const CefRefPtr<CefApp>& app, const CefRefPtr<CefCommandLine>& commandLine);
  static CefRefPtr<CefApp> app();
  static CefRefPtr<CefCommandLine> commandLine();
};

}  // namespace cef_qt
