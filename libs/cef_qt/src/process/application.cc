#include "process/application.h"

#include <QLoggingCategory>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace cef_qt {
namespace {

QtMessageHandler previousHandler = nullptr;

// Qt would abort, which leaves a core dump.
void exitOnFatal(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) {
    std::fprintf(stderr, "The display cannot be opened; nothing can be shown.\n");
    std::_Exit(EXIT_FAILURE);
  }
  previousHandler(type, context, text);
}

}  // namespace

bool hasDisplay() {
  return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
         !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

Application::Application(const QByteArray& program) : program_(program) {
  argv_[0] = program_.data();
  previousHandler = qInstallMessageHandler(exitOnFatal);
  application_ = std::make_unique<QApplication>(argc_, argv_.data());
  qInstallMessageHandler(previousHandler);
  QApplication::setQuitOnLastWindowClosed(false);
  // Qt logs a page of set-up details at every start. QT_LOGGING_RULES enables them again.
  QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext=false"));
}

}  // namespace cef_qt
