#include "process/environment.h"

#include <unistd.h>

#include <QDir>
#include <QFile>

namespace cef_qt {
namespace {

bool hasGraphicsDevice() {
  return !QDir(QStringLiteral("/dev/dri"))
              .entryList({QStringLiteral("renderD*")}, QDir::System | QDir::Files)
              .isEmpty();
}

// Off-screen frames are needed in memory; a graphics device would have to be read back.
bool drawsInSoftware(const Options& options) {
  return options.offScreen || !hasGraphicsDevice();
}

void setUnlessSet(const char* name, const QByteArray& value) {
  if (!qEnvironmentVariableIsSet(name)) {
    qputenv(name, value);
  }
}

// Switches off Chromium's own connections.
const QStringList& quietSwitches() {
  static const QStringList kSwitches{QStringLiteral("--disable-background-networking"),
                                     QStringLiteral("--disable-component-update"),
                                     QStringLiteral("--disable-domain-reliability"),
                                     QStringLiteral("--disable-client-side-phishing-detection"),
                                     QStringLiteral("--disable-sync"),
                                     QStringLiteral("--no-pings"),
                                     QStringLiteral("--no-first-run")};
  return kSwitches;
}

QStringList chromiumSwitches(const Options& options) {
  QStringList switches = quietSwitches();
  const bool sandboxOff = runsWithoutSandbox(options);
  if (sandboxOff) {
    switches << QStringLiteral("--no-sandbox");
  }
  if (drawsInSoftware(options)) {
    switches << QStringLiteral("--disable-gpu");
    if (sandboxOff) {
      switches << QStringLiteral("--no-zygote");
    }
  }
  return switches;
}

void prepareSubprocess(const Options& options) {
  if (options.subprocessPath.isEmpty()) {
    return;
  }
  setUnlessSet(kRealProcessVariable, qgetenv("QTWEBENGINEPROCESS_PATH"));
  qputenv("QTWEBENGINEPROCESS_PATH", QFile::encodeName(options.subprocessPath));
}

}  // namespace

QStringList weakeningVariables() {
  QStringList found;
  for (const char* name :
       {"QTWEBENGINE_REMOTE_DEBUGGING", "QTWEBENGINE_CHROMIUM_FLAGS", "QTWEBENGINE_DISABLE_SANDBOX",
        "QTWEBENGINEPROCESS_PATH", kRealProcessVariable, "QTWEBENGINE_RESOURCES_PATH",
        "QTWEBENGINE_LOCALES_PATH", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH", "LD_PRELOAD",
        "LD_LIBRARY_PATH"}) {
    if (!qEnvironmentVariableIsEmpty(name)) {
      found << QString::fromLatin1(name);
    }
  }
  return found;
}

bool runsWithoutSandbox(const Options& options) {
  return options.noSandbox || geteuid() == 0;
}

void prepareEnvironment(const Options& options, const QStringList& addedSwitches) {
  // With GLib's event loop, the nested loops of modal dialogs often stop Chromium.
  setUnlessSet("QT_NO_GLIB", "1");
  if (drawsInSoftware(options)) {
    setUnlessSet("QT_QUICK_BACKEND", "software");
  }
  if (options.remoteDebuggingPort > 0) {
    setUnlessSet("QTWEBENGINE_REMOTE_DEBUGGING", QByteArray::number(options.remoteDebuggingPort));
  }
  prepareSubprocess(options);
  QStringList switches = chromiumSwitches(options) + addedSwitches;
  const QString users = qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS");
  if (!users.isEmpty()) {
    switches << users;
  }
  qputenv("QTWEBENGINE_CHROMIUM_FLAGS", switches.join(' ').toLocal8Bit());
}

}  // namespace cef_qt
