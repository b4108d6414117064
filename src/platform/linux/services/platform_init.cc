#include "platform/linux/services/platform_init.h"

#include <syslog.h>

#include <QApplication>
#include <QIcon>
#include <exception>
#include <new>

#include "app/settings/app_settings.h"
#include "app/settings/executable_path.h"
#include "platform/linux/application/application.h"
#include "platform/linux/crash/crash_reporter.h"

namespace zantrio {

namespace {

CrashReportFacts describeApplication() {
  const CAppSettings settings(new CMainBundle, resolveExecutablePath(""));
  CrashReportFacts facts;
  settings.getAppDataFolder(facts.appDataFolder);
  settings.getVersion(facts.version);
  settings.getOsVersion(facts.system);
  return facts;
}

void startCrashReporter() {
  CrashReporter* const reporter = CrashReporter::current();
  const bool started = reporter != nullptr && reporter->start(describeApplication());
  syslog(LOG_USER | (started ? LOG_INFO : LOG_WARNING), "Zantrio: crashes are %s",
         started ? "reported" : "not reported, there is no watcher");
}

void introduceApplication() {
  if (!canShowWidgets()) {
    syslog(LOG_USER | LOG_WARNING, "Zantrio: no application to introduce to the desktop");
    return;
  }
  syslog(LOG_USER | LOG_INFO, "Zantrio: introducing the application to the desktop");
  QGuiApplication::setDesktopFileName(QStringLiteral("zantrio"));
  QApplication::setWindowIcon(applicationIcon());
}

}  // namespace

void CPlatformInitLinux::init() {
  try {
    startCrashReporter();
  } catch (const std::exception& exception) {
    syslog(LOG_USER | LOG_WARNING, "Zantrio: crashes are not reported: %s", exception.what());
  }
  introduceApplication();
}

std::unique_ptr<IPlatformInit> createPlatformInit() {
  return std::unique_ptr<IPlatformInit>(new (std::nothrow) CPlatformInitLinux);
}

}  // namespace zantrio
