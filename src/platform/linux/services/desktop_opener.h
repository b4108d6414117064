#pragma once

#include <QString>

namespace zantrio {

// Starts the desktop's opener, xdg-open, with `url` as its only argument, without a shell and
// without waiting for it. What it starts gets the user's environment, without what the browser
// framework put into ours for itself. False when it could not be started.
bool startDesktopOpener(const QString& url);

}  // namespace zantrio
