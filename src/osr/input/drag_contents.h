// What drags carry, to and from the browser.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "include/cef_drag_data.h"
#include "osr/input/bytes_write_handler.h"

namespace client {

// What the system's drag offers, in UTF-8.
struct DroppedItems {
  std::optional<std::string> text;
  std::vector<std::string> paths;
};

// Adds the text, and every path that exists on disk.
void populateDropData(CefDragData& data, const DroppedItems& items);

// The kinds of data that the system's drag of some browser data offers.
struct DragKinds {
  bool link = false;
  bool fileContents = false;
  bool text = false;
};
DragKinds kindsOf(CefDragData& data);

// The contents of the file that the data would make; null when there are none or they cannot be
// kept in memory.
CefRefPtr<BytesWriteHandler> fileContentsOf(CefDragData& data);

// The operation that the browser is told of at a drag's end: a system that reports copy and move
// together means a copy.
cef_drag_operations_mask_t reportedOperation(unsigned int operation);

}  // namespace client
