// The framework's event flags in Qt's types.
#pragma once

#include <Qt>

#include "include/internal/cef_types.h"

namespace cef_qt {

Qt::MouseButton buttonOf(cef_mouse_button_type_t type);
Qt::MouseButtons buttonsOf(uint32_t flags);
Qt::KeyboardModifiers keyboardModifiersOf(uint32_t flags);
// What Qt has no modifier of its own for, as keyboards of Linux say it.
quint32 nativeModifiersOf(uint32_t flags);

}  // namespace cef_qt
