// Scripts as they are handed to Chromium.
#pragma once

#include <QString>

namespace cef_qt {

// The code with its script URL and first line made known to the engine: errors and stack traces
// name them. An empty URL leaves the code as it is.
QString scriptText(QStringView code, QStringView scriptUrl, int startLine);

}  // namespace cef_qt
