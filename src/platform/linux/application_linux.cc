#include "platform/linux/application_linux.h"

#include <QApplication>
#include <QThread>
#include <QWidget>

namespace zantrio {

bool canShowWidgets() {
  const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  return application != nullptr && !QCoreApplication::closingDown() &&
         application->thread() == QThread::currentThread();
}

QWidget* windowForDialogs() {
  QWidget* window = QApplication::activeWindow();
  return window != nullptr && window->isVisible() ? window : nullptr;
}

QString toShownText(const std::string& text) {
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  shown.replace(QChar(QChar::Null), QChar(QChar::ReplacementCharacter));
  return shown;
}

}  // namespace zantrio
