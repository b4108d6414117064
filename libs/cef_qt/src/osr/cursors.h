// Qt's cursors as the framework names them.
#pragma once

#include <Qt>

#include "include/internal/cef_types.h"

namespace cef_qt {

cef_cursor_type_t cursorTypeOf(Qt::CursorShape shape);

}  // namespace cef_qt
