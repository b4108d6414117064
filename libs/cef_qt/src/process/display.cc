#include "process/display.h"

#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace cef_qt {
namespace {

QtMessageHandler previousHandler = nullptr;

void endOnFatal(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) {
    std::fprintf(stderr, "The display cannot be opened; nothing can be shown.\n");
    std::_Exit(EXIT_FAILURE);
  }
  previousHandler(type, context, text);
}

}  // namespace

bool namesDisplay() {
  return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
         !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

DisplayGuard::DisplayGuard() {
  previousHandler = qInstallMessageHandler(endOnFatal);
}

DisplayGuard::~DisplayGuard() {
  qInstallMessageHandler(previousHandler);
}

}  // namespace cef_qt
