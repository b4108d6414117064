#include "osr/event_flags_qt.h"

namespace cef_qt {

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
  constexpr quint32 kLock = 1U << 1U;  // by xkb
  return (flags & EVENTFLAG_CAPS_LOCK_ON) != 0 ? kLock : 0;
}

}  // namespace cef_qt
