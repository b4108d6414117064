// Start, loop and end of the framework in this process.
#pragma once

#include "include/cef_app.h"

namespace cef_qt {

// The functions of include/cef_app.h; see there. UI thread but for the two getters.
class Framework {
 public:
  static bool start(const CefMainArgs& args, const CefSettings& settings,
                    const CefRefPtr<CefApp>& app);
  static int exitCode();
  static void run();
  static void quit();
  static void stop();

  // Whether browsers can be drawn off screen.
  static bool servesOffScreen();
  // Null when the framework is not running.
  static CefRefPtr<CefApp> app();
  static CefRefPtr<CefCommandLine> commandLine();
};

}  // namespace cef_qt
