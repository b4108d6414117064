#include "osr/event_conversion.h"

#include <QChar>

namespace cef_qt {
namespace {

struct KeyPair {
  int windows;
  Qt::Key qt;
};

constexpr KeyPair kKeys[] = {
    {0x08, Qt::Key_Backspace},
    {0x09, Qt::Key_Tab},
    {0x0D, Qt::Key_Return},
    {0x10, Qt::Key_Shift},
    {0x11, Qt::Key_Control},
    {0x12, Qt::Key_Alt},
    {0x13, Qt::Key_Pause},
    {0x14, Qt::Key_CapsLock},
    {0x1B, Qt::Key_Escape},
    {0x20, Qt::Key_Space},
    {0x21, Qt::Key_PageUp},
    {0x22, Qt::Key_PageDown},
    {0x23, Qt::Key_End},
    {0x24, Qt::Key_Home},
    {0x25, Qt::Key_Left},
    {0x26, Qt::Key_Up},
    {0x27, Qt::Key_Right},
    {0x28, Qt::Key_Down},
    {0x2C, Qt::Key_Print},
    {0x2D, Qt::Key_Insert},
    {0x2E, Qt::Key_Delete},
    {0x5B, Qt::Key_Meta},
    {0x5C, Qt::Key_Meta},
    {0x5D, Qt::Key_Menu},
    {0x6A, Qt::Key_Asterisk},
    {0x6B, Qt::Key_Plus},
    {0x6D, Qt::Key_Minus},
    {0x6E, Qt::Key_Period},
    {0x6F, Qt::Key_Slash},
    {0x90, Qt::Key_NumLock},
    {0x91, Qt::Key_ScrollLock},
    {0xBA, Qt::Key_Semicolon},
    {0xBB, Qt::Key_Equal},
    {0xBC, Qt::Key_Comma},
    {0xBD, Qt::Key_Minus},
    {0xBE, Qt::Key_Period},
    {0xBF, Qt::Key_Slash},
    {0xC0, Qt::Key_QuoteLeft},
    {0xDB, Qt::Key_BracketLeft},
    {0xDC, Qt::Key_Backslash},
    {0xDD, Qt::Key_BracketRight},
    {0xDE, Qt::Key_Apostrophe},
    {0xE1, Qt::Key_AltGr},
    {0xA6, Qt::Key_Back},
    {0xA7, Qt::Key_Forward},
    {0xA8, Qt::Key_Refresh},
    {0xA9, Qt::Key_Stop},
    {0xAA, Qt::Key_Search},
    {0xAB, Qt::Key_Favorites},
    {0xAC, Qt::Key_HomePage},
    {0xAD, Qt::Key_VolumeMute},
    {0xAE, Qt::Key_VolumeDown},
    {0xAF, Qt::Key_VolumeUp},
    {0xB0, Qt::Key_MediaNext},
    {0xB1, Qt::Key_MediaPrevious},
    {0xB2, Qt::Key_MediaStop},
    {0xB3, Qt::Key_MediaTogglePlayPause},
    {0xB4, Qt::Key_LaunchMail},
    {0xB5, Qt::Key_LaunchMedia},
    {0xB6, Qt::Key_Launch0},
    {0xB7, Qt::Key_Launch1},
};

bool isBetween(int code, int first, int last) {
  return code >= first && code <= last;
}

}  // namespace

Qt::MouseButton buttonOf(cef_mouse_button_type_t type) {
  switch (type) {
    case MBT_MIDDLE:
      return Qt::MiddleButton;
    case MBT_RIGHT:
      return Qt::RightButton;
    default:
      return Qt::LeftButton;
  }
}

Qt::MouseButtons buttonsOf(uint32_t flags) {
  Qt::MouseButtons buttons;
  buttons.setFlag(Qt::LeftButton, (flags & EVENTFLAG_LEFT_MOUSE_BUTTON) != 0);
  buttons.setFlag(Qt::MiddleButton, (flags & EVENTFLAG_MIDDLE_MOUSE_BUTTON) != 0);
  buttons.setFlag(Qt::RightButton, (flags & EVENTFLAG_RIGHT_MOUSE_BUTTON) != 0);
  return buttons;
}

Qt::KeyboardModifiers keyboardModifiersOf(uint32_t flags) {
  Qt::KeyboardModifiers modifiers;
  modifiers.setFlag(Qt::ShiftModifier, (flags & EVENTFLAG_SHIFT_DOWN) != 0);
  modifiers.setFlag(Qt::ControlModifier, (flags & EVENTFLAG_CONTROL_DOWN) != 0);
  modifiers.setFlag(Qt::AltModifier, (flags & EVENTFLAG_ALT_DOWN) != 0);
  modifiers.setFlag(Qt::MetaModifier, (flags & EVENTFLAG_COMMAND_DOWN) != 0);
  modifiers.setFlag(Qt::KeypadModifier, (flags & EVENTFLAG_IS_KEY_PAD) != 0);
  return modifiers;
}

quint32 nativeModifiersOf(uint32_t flags) {
  constexpr quint32 kXkbLock = 1U << 1U;
  return (flags & EVENTFLAG_CAPS_LOCK_ON) != 0 ? kXkbLock : 0;
}

int qtKeyOf(int windowsKeyCode, char16_t character) {
  // Digits and letters have their character codes in both systems.
  if (isBetween(windowsKeyCode, '0', '9') || isBetween(windowsKeyCode, 'A', 'Z')) {
    return windowsKeyCode;
  }
  if (isBetween(windowsKeyCode, 0x60, 0x69)) {  // key pad
    return Qt::Key_0 + (windowsKeyCode - 0x60);
  }
  if (isBetween(windowsKeyCode, 0x70, 0x87)) {
    return Qt::Key_F1 + (windowsKeyCode - 0x70);
  }
  for (const KeyPair& pair : kKeys) {
    if (pair.windows == windowsKeyCode) {
      return pair.qt;
    }
  }
  return character < 0x20 ? int{Qt::Key_unknown} : QChar(character).toUpper().unicode();
}

}  // namespace cef_qt
