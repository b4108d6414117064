// What Qt and Chromium read from the environment.
#pragma once

#include <QStringList>

#include "base/options.h"

namespace cef_qt {

// Sets the environment of this process before the QApplication is made: Chromium's switches, the
// sub-process executable, the sandbox, and software drawing on machines without a graphics device.
// What the user has set keeps its effect. `addedSwitches` are the application's.
void prepareEnvironment(const Options& options, const QStringList& addedSwitches);

// Whether Chromium runs without its sandbox.
bool runsWithoutSandbox(const Options& options);

// Names the executable that serves Chromium's processes; set for our own sub-process executable.
inline constexpr char kRealProcessVariable[] = "CEF_QT_WEBENGINE_PROCESS";

}  // namespace cef_qt
