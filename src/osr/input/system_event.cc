#include "osr/input/system_event.h"

namespace client {
namespace {

struct FlagPair {
  uint32_t system;
  uint32_t browser;
};

constexpr FlagPair kModifierFlags[] = {
    {kCapsLock, EVENTFLAG_CAPS_LOCK_ON}, {kShift, EVENTFLAG_SHIFT_DOWN},
    {kControl, EVENTFLAG_CONTROL_DOWN},  {kOption, EVENTFLAG_ALT_DOWN},
    {kCommand, EVENTFLAG_COMMAND_DOWN},
};

bool isKeyEvent(EventKind kind) {
  return kind == EventKind::kKeyDown || kind == EventKind::kKeyUp ||
         kind == EventKind::kFlagsChanged;
}

uint32_t buttonFlagOf(EventKind kind) {
  switch (kind) {
    case EventKind::kLeftDown:
    case EventKind::kLeftUp:
    case EventKind::kLeftDragged:
      return EVENTFLAG_LEFT_MOUSE_BUTTON;
    case EventKind::kRightDown:
    case EventKind::kRightUp:
    case EventKind::kRightDragged:
      return EVENTFLAG_RIGHT_MOUSE_BUTTON;
    case EventKind::kOtherDown:
    case EventKind::kOtherUp:
    case EventKind::kOtherDragged:
      return EVENTFLAG_MIDDLE_MOUSE_BUTTON;
    default:
      return EVENTFLAG_NONE;
  }
}

bool isKeyPadCode(int code) {
  switch (code) {
    case 65:  // decimal point
    case 67:  // multiply
    case 69:  // plus
    case 71:  // clear
    case 75:  // divide
    case 76:  // enter
    case 78:  // minus
    case 81:  // equals
      return true;
    default:
      // The digits; 90 is not on the key pad.
      return (code >= 82 && code <= 89) || code == 91 || code == 92;
  }
}

// The modifier of a modifier key; 0 for other keys.
uint32_t modifierOfKey(int code) {
  switch (code) {
    case 54:
    case 55:
      return kCommand;
    case 56:
    case 60:
      return kShift;
    case 57:
      return kCapsLock;
    case 58:
    case 61:
      return kOption;
    case 59:
    case 62:
      return kControl;
    case 63:
      return kFunction;
    default:
      return 0;
  }
}

char16_t firstUnit(const std::u16string& text) {
  return text.empty() ? u'\0' : text.front();
}

}  // namespace

uint32_t getModifiersForEvent(const SystemEvent& event) {
  uint32_t flags = buttonFlagOf(event.kind);
  for (const FlagPair& pair : kModifierFlags) {
    if ((event.modifiers & pair.system) != 0) {
      flags |= pair.browser;
    }
  }
  if (isKeyEvent(event.kind) && isKeyPadEvent(event)) {
    flags |= EVENTFLAG_IS_KEY_PAD;
  }
  if (event.isRepeat) {
    flags |= EVENTFLAG_IS_REPEAT;
  }
  return flags;
}

bool isKeyPadEvent(const SystemEvent& event) {
  if ((event.modifiers & kNumericPad) != 0) {
    return true;
  }
  return event.keyCode && isKeyPadCode(*event.keyCode);
}

bool isKeyUpEvent(const SystemEvent& event) {
  if (event.kind != EventKind::kFlagsChanged) {
    return event.kind == EventKind::kKeyUp;
  }
  const uint32_t modifier = event.keyCode ? modifierOfKey(*event.keyCode) : 0;
  return modifier != 0 && (event.modifiers & modifier) == 0;
}

std::u16string charactersWithoutControl(const SystemEvent& event) {
  const auto isBetween = [code = event.windowsKeyCode](int first, int last) {
    return code >= first && code <= last;
  };
  const bool shift = (event.modifiers & kShift) != 0;
  if ((event.modifiers & kControl) != 0 && isBetween('A', 'Z')) {
    const int toLower = shift ? 0 : 'a' - 'A';
    return {static_cast<char16_t>(event.windowsKeyCode + toLower)};
  }
  if ((event.modifiers & kControl) != 0 && !shift && isBetween('0', '9')) {
    return {static_cast<char16_t>(event.windowsKeyCode)};
  }
  return event.characters;
}

void getKeyEvent(CefKeyEvent& keyEvent, const SystemEvent& event) {
  if (event.kind == EventKind::kKeyDown || event.kind == EventKind::kKeyUp) {
    keyEvent.character = firstUnit(event.characters);
    keyEvent.unmodified_character = firstUnit(event.charactersIgnoringModifiers);
  } else {
    keyEvent.character = 0;
    keyEvent.unmodified_character = 0;
  }
  keyEvent.windows_key_code = event.windowsKeyCode;
  keyEvent.native_key_code = event.keyCode.value_or(event.nativeKeyCode);
  keyEvent.modifiers = getModifiersForEvent(event);
}

CefMouseEvent mouseEventAt(const OsrPoint& point, uint32_t modifiers) {
  CefMouseEvent record;
  record.x = static_cast<int>(point.x);
  record.y = static_cast<int>(point.y);
  record.modifiers = modifiers;
  return record;
}

}  // namespace client
