#include "platform/linux/platform_init_linux.h"

#include <syslog.h>

#include <QApplication>
#include <QIcon>
#include <new>

#include "platform/linux/application_icon_linux.h"
#include "platform/linux/application_linux.h"

namespace zantrio {

void CPlatformInitLinux::init() {
  if (!canShowWidgets()) {
    syslog(LOG_USER | LOG_WARNING, "Zantrio: no application to introduce to the desktop");
    return;
  }
  syslog(LOG_USER | LOG_INFO, "Zantrio: introducing the application to the desktop");
  QGuiApplication::setDesktopFileName(QStringLiteral("zantrio"));
  QApplication::setWindowIcon(applicationIcon());
}

std::unique_ptr<IPlatformInit> createPlatformInit() {
  return std::unique_ptr<IPlatformInit>(new (std::nothrow) CPlatformInitLinux);
}

}  // namespace zantrio
