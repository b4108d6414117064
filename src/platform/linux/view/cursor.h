// The browser's cursors as Qt's.
#pragma once

#include <QCursor>

#include "include/cef_base.h"

namespace client {

// CT_CUSTOM yields the image, or an arrow if there is none.
QCursor toCursor(cef_cursor_type_t type, const CefCursorInfo& custom);

}  // namespace client
