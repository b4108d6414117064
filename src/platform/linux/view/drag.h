// Drags that begin in a page.
#pragma once

#include <Qt>

#include "include/cef_drag_data.h"

class QWidget;

namespace client {

// Runs the system's drag from the view, with a loop of its own; gives what was done with it.
Qt::DropAction dragOut(QWidget* view, CefDragData& data, Qt::DropActions allowed);

}  // namespace client
