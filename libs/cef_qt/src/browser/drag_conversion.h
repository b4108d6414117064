// Conversion of Qt's drag contents and actions into the framework's types.
#pragma once

#include <QMimeData>
#include <Qt>

#include "include/cef_drag_data.h"

namespace cef_qt {

// The data of a drag from elsewhere.
CefRefPtr<CefDragData> dragDataOf(const QMimeData& mime);

// The data of a drag that a page began. Qt stores the contents of a dragged image in a temporary
// file; the framework hands over the contents and their name.
CefRefPtr<CefDragData> pageDragDataOf(const QMimeData& mime);

cef_drag_operations_mask_t operationsOf(Qt::DropActions actions);

}  // namespace cef_qt
