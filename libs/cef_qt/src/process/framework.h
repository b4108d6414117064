// Start, loop and end of the framework in this process.
#pragma once

#include "include/cef_app.h"

namespace cef_qt {

// The functions of include/cef_app.h; see there. UI thread.
class Framework {
 public:
  static bool start(const CefMainArgs& args, const CefSettings& settings,
                    const CefRefPtr<CefApp>& app);
  static int exitCode();
  static void run();
  static void quit();
  static void stop();
};

}  // namespace cef_qt
