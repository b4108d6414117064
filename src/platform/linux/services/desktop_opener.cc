#include "platform/linux/services/desktop_opener.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace zantrio {
namespace {

// Another browser on the same engine would otherwise run with our switches, sandbox and debugging
// port.
bool isFrameworksOwn(const QString& variable) {
  return variable.startsWith(QLatin1String("QTWEBENGINE")) ||
         variable.startsWith(QLatin1String("CEF_QT_")) ||
         variable == QLatin1String("QT_QUICK_BACKEND") || variable == QLatin1String("QT_NO_GLIB");
}

QProcessEnvironment usersEnvironment() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& variable : environment.keys()) {
    if (isFrameworksOwn(variable)) {
      environment.remove(variable);
    }
  }
  return environment;
}

}  // namespace

bool startDesktopOpener(const QString& url) {
  QProcess opener;
  opener.setProgram(QStringLiteral("xdg-open"));
  opener.setArguments({url});
  opener.setProcessEnvironment(usersEnvironment());
  // Whatever it starts lives longer than the application and must not write into its logs.
  opener.setStandardInputFile(QProcess::nullDevice());
  opener.setStandardOutputFile(QProcess::nullDevice());
  opener.setStandardErrorFile(QProcess::nullDevice());
  return opener.startDetached();
}

}  // namespace zantrio
