#pragma once

#include <gio/gio.h>

#include "platform/linux/contacts/glib_handles.h"

namespace zantrio {

// The session bus, when the Evolution Data Server runs on it or can be started from it; null
// otherwise. Starts nothing. As long as the connection is held, the end of the bus does not end
// the process, which is what GLib does by default.
GObjectPtr<GDBusConnection> connectToEdsService();

}  // namespace zantrio
