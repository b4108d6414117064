// Drags out of the page: their data on the way to the system.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "include/cef_drag_data.h"
#include "osr/input/bytes_write_handler.h"

namespace client {

// The kinds of data that a drag out of the page offers.
struct DragKinds {
  bool link = false;
  bool fileContents = false;
  bool text = false;
};
DragKinds kindsOf(CefDragData& data);

// The contents of the dragged virtual file; null if there are none or memory is exhausted.
CefRefPtr<BytesWriteHandler> fileContentsOf(CefDragData& data);

// The operation to report to the browser when a drag ends: a system that reports copy and move
// together means a copy.
cef_drag_operations_mask_t reportedOperation(unsigned int operation);

// Writes the dragged virtual file into a folder, under its own name or, if that is taken, a
// numbered one; existing files are never overwritten. Returns the name, or nothing if there are no
// contents or they cannot be written, which is logged and leaves no file. Thread: any.
std::optional<std::string> writePromisedFile(CefDragData& data, const std::string& folder);

}  // namespace client
