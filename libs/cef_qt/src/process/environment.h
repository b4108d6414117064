// The environment variables that Qt and Chromium read.
#pragma once

#include <QStringList>

#include "base/options.h"

namespace cef_qt {

// Sets the environment of this process before the QApplication is created: Chromium's switches with
// those that the application added, the sub-process executable, the sandbox, and software rendering
// on machines without a graphics device. Variables that the user has set keep their effect.
void prepareEnvironment(const Options& options, const QStringList& addedSwitches);

// The variables set for this process that load code, switch off protections, or let others control
// the pages. To be called before prepareEnvironment, which sets some of them.
QStringList weakeningVariables();

// Whether Chromium runs without its sandbox.
bool runsWithoutSandbox(const Options& options);

// Passes the path of Qt's own sub-process executable to the one in CefSettings.
inline constexpr char kRealProcessVariable[] = "CEF_QT_WEBENGINE_PROCESS";

}  // namespace cef_qt
