#include "platform/linux/application/application.h"

#include <QApplication>
#include <QThread>
#include <QWidget>
#include <algorithm>

namespace zantrio {

bool canShowWidgets() {
  const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  return application != nullptr && !QCoreApplication::closingDown() &&
         application->thread() == QThread::currentThread();
}

QWidget* windowForDialogs() {
  const auto isOpenWindow = [](const QWidget* window) {
    return window != nullptr && window->isVisible() && window->windowType() == Qt::Window;
  };
  if (isOpenWindow(QApplication::activeWindow())) {
    return QApplication::activeWindow();
  }
  const QWidgetList windows = QApplication::topLevelWidgets();
  const auto open = std::find_if(windows.begin(), windows.end(), isOpenWindow);
  return open == windows.end() ? nullptr : *open;
}

QString toShownText(const std::string& text) {
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  shown.replace(QChar(QChar::Null), QChar(QChar::ReplacementCharacter));
  return shown;
}

}  // namespace zantrio
