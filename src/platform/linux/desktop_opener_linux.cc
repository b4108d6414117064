#include "platform/linux/desktop_opener_linux.h"

#include <QProcess>

namespace zantrio {

bool startDesktopOpener(const QString& url) {
  QProcess opener;
  opener.setProgram(QStringLiteral("xdg-open"));
  opener.setArguments({url});
  // Whatever it starts lives longer than the application and must not write into its logs.
  opener.setStandardInputFile(QProcess::nullDevice());
  opener.setStandardOutputFile(QProcess::nullDevice());
  opener.setStandardErrorFile(QProcess::nullDevice());
  return opener.startDetached();
}

}  // namespace zantrio
