#pragma once

#include <QString>

namespace zantrio {

// Starts the desktop's opener, xdg-open, with `url` as its only argument, without a shell and
// without waiting for it. False when it could not be started.
bool startDesktopOpener(const QString& url);

}  // namespace zantrio
