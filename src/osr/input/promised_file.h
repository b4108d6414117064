#pragma once

#include <optional>
#include <string>

#include "include/cef_drag_data.h"

namespace client {

// Writes the file that the dragged data would make into a folder, under its own name or, where
// that is taken, a counted one; nothing that is there is replaced. Gives the name. None when there
// are no contents or they cannot be written, which is logged and leaves no file. Thread: any.
std::optional<std::string> writePromisedFile(CefDragData& data, const std::string& folder);

}  // namespace client
