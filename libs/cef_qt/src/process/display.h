// The display that windows are shown on.
#pragma once

namespace cef_qt {

// Whether the environment names a display, or a platform of Qt's that may need none.
bool namesDisplay();

// While it lives, an error that would make Qt abort the process ends it with one line on standard
// error and exit code 1 instead: no core dump for a display that cannot be opened.
class DisplayGuard {
 public:
  DisplayGuard();
  DisplayGuard(const DisplayGuard&) = delete;
  DisplayGuard& operator=(const DisplayGuard&) = delete;
  ~DisplayGuard();
};

}  // namespace cef_qt
