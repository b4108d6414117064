// Conversion of the framework's input events into Qt's types.
#pragma once

#include <Qt>

#include "include/internal/cef_types.h"

namespace cef_qt {

Qt::MouseButton buttonOf(cef_mouse_button_type_t type);
Qt::MouseButtons buttonsOf(uint32_t flags);
Qt::KeyboardModifiers keyboardModifiersOf(uint32_t flags);
// XKB modifiers of the flags for which Qt has no modifier.
quint32 nativeModifiersOf(uint32_t flags);

// The Qt::Key of a Windows virtual key code, or Qt::Key_unknown. The character decides for keys
// whose code depends on the keyboard layout.
int qtKeyOf(int windowsKeyCode, char16_t character);

}  // namespace cef_qt
