#pragma once

#include "bridge/drag_handler.h"
#include "include/cef_drag_data.h"

namespace zantrio {

// What the drag handlers are told of a drag.
DragMessage toDragMessage(const CefRefPtr<CefDragData>& data);

// Offers the drag to every drag handler; true when at least one takes it. Thread: UI.
bool offerDrag(const DragMessage& message);

}  // namespace zantrio
