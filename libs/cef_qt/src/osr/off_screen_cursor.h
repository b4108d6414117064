// The cursor of an off-screen browser.
#pragma once

#include <QCursor>
#include <QTimer>

namespace cef_qt {

class OffScreenBrowser;

// Reports the page's cursor to the client. Chromium changes the cursor some time after a movement
// and Qt emits no signal, so a timer compares it. Owned by the off-screen browser. UI thread.
class OffScreenCursor {
 public:
  explicit OffScreenCursor(OffScreenBrowser& browser);

  // Checks often for a while, then rarely, because a page may change its cursor without input.
  void watch();
  // Called when the pointer has left the view.
  void stop() { timer_.stop(); }

 private:
  void check();

  OffScreenBrowser& browser_;
  QTimer timer_;
  int fastChecks_ = 0;  // remaining
  QCursor reported_;
};

}  // namespace cef_qt
