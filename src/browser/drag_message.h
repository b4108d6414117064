#pragma once

#include "bridge/drag_handler.h"
#include "include/cef_drag_data.h"

namespace zantrio {

// Describes a drag to the drag handlers.
DragMessage toDragMessage(const CefRefPtr<CefDragData>& data);

// Offers the drag to every drag handler; true when at least one accepts it. Thread: UI.
bool offerDrag(const DragMessage& message);

}  // namespace zantrio
