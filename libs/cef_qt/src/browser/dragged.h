// Drags of the window system as the framework shows them.
#pragma once

#include <QMimeData>
#include <Qt>

#include "include/cef_drag_data.h"

namespace cef_qt {

CefRefPtr<CefDragData> draggedData(const QMimeData& mime);

cef_drag_operations_mask_t operationsOf(Qt::DropActions actions);

}  // namespace cef_qt
