#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace zantrio::test {

// Generous: reached by failing tests only.
constexpr int kWaitLimitMs = 20'000;

// Runs the event loop until `done` holds; false when it does not in time.
bool waitFor(const std::function<bool()>& done);

// Calls `action` once, as soon as a modal dialog of this class is open; for calls that block until
// their dialog closes. If none opens in time, the test fails and all windows are closed.
template <class Dialog>
void whenModal(const std::function<void(Dialog&)>& action) {
  auto* timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, action, polls = 0]() mutable {
    constexpr int kIntervalMs = 5;
    timer->setInterval(kIntervalMs);
    auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
    if (dialog != nullptr && dialog->isVisible()) {
      timer->stop();
      timer->deleteLater();
      action(*dialog);
    } else if (++polls * kIntervalMs > kWaitLimitMs) {
      timer->stop();
      timer->deleteLater();
      ADD_FAILURE() << "no dialog opened";
      QApplication::closeAllWindows();
    }
  });
  timer->start(0);
}

// The visible windows of this kind.
template <class Window>
QList<Window*> openWindows() {
  QList<Window*> windows;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* window = qobject_cast<Window*>(widget);
    if (window != nullptr && window->isVisible()) {
      windows.append(window);
    }
  }
  return windows;
}

}  // namespace zantrio::test
