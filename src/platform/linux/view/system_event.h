// Converts Qt's events to portable ones.
#pragma once

#include <QDropEvent>
#include <QEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <optional>

#include "osr/input/drag_session.h"
#include "osr/input/key_input.h"
#include "osr/input/system_event.h"

namespace client {

// `clickCount`: of the press that the event belongs to.
SystemEvent toSystemEvent(const QMouseEvent& event, int clickCount);
SystemEvent toSystemEvent(const QWheelEvent& event);
SystemEvent toSystemEvent(const QKeyEvent& event);
uint32_t toSystemModifiers(Qt::KeyboardModifiers modifiers);

// The command of a dedicated edit key, for which the browser has no key code; none for other keys.
std::optional<EditCommand> editCommandOf(const QKeyEvent& event);

DroppedItems toDroppedItems(const QMimeData& mime);
cef_drag_operations_mask_t toDragOperations(Qt::DropActions actions);
Qt::DropActions toDropActions(cef_drag_operations_mask_t operations);
// Ignore for no operation.
Qt::DropAction toDropAction(cef_drag_operations_mask_t operation);

}  // namespace client
