// Qt's cursors as the framework names them.
#pragma once

#include <QCursor>
#include <QImage>

#include "include/internal/cef_types_wrappers.h"

namespace cef_qt {

cef_cursor_type_t cursorTypeOf(Qt::CursorShape shape);

// What a cursor shows that is a picture, as BGRA pixels; a null picture for others.
QImage pictureOf(const QCursor& cursor);
// Describes such a cursor; points into the picture.
CefCursorInfo cursorInfoOf(const QCursor& cursor, const QImage& picture);

}  // namespace cef_qt
