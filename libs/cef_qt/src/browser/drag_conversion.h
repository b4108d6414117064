// Conversion of Qt's drag contents and actions into the framework's types.
#pragma once

#include <QMimeData>
#include <Qt>

#include "include/cef_drag_data.h"

namespace cef_qt {

CefRefPtr<CefDragData> dragDataOf(const QMimeData& mime);

cef_drag_operations_mask_t operationsOf(Qt::DropActions actions);

}  // namespace cef_qt
