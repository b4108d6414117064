#pragma once

namespace cef_qt {

// Whether the process at the other end of a connected local socket runs as this process's user.
bool isOfThisUser(int socket);

}  // namespace cef_qt
