// Qt's events in the terms that all systems share.
#pragma once

#include <QDropEvent>
#include <QEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <optional>

#include "osr/input/drag_contents.h"
#include "osr/input/edit_commands.h"
#include "osr/input/system_event.h"

namespace client {

// A press, release or move; `clickCount` is of the press that it belongs to.
SystemEvent toSystemEvent(const QMouseEvent& event, int clickCount);
SystemEvent toSystemEvent(const QWheelEvent& event);
SystemEvent toSystemEvent(const QKeyEvent& event);
uint32_t toSystemModifiers(Qt::KeyboardModifiers modifiers);

// What a keyboard's own edit key asks for, which the browser has no code for; none of other keys.
std::optional<EditCommand> editCommandOf(const QKeyEvent& event);

DroppedItems toDroppedItems(const QMimeData& mime);
cef_drag_operations_mask_t toDragOperations(Qt::DropActions actions);
Qt::DropActions toDropActions(cef_drag_operations_mask_t operations);
// The action of one operation; ignore for none.
Qt::DropAction toDropAction(cef_drag_operations_mask_t operation);

}  // namespace client
