// The browser's cursors as Qt's.
#pragma once

#include <QCursor>

#include "include/cef_base.h"

namespace client {

// The cursor of a type; of CT_CUSTOM the picture, or an arrow when there is none.
QCursor toCursor(cef_cursor_type_t type, const CefCursorInfo& custom);

}  // namespace client
