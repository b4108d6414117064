// Windows' virtual key codes, by which the framework names keys.
#pragma once

#include <cstdint>

namespace cef_qt {

// Qt's key, or Qt::Key_unknown; `character` helps with keys whose code depends on the keyboard.
int qtKeyOf(int windowsKeyCode, char16_t character);

}  // namespace cef_qt
