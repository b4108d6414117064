#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "osr/view/osr_view.h"

namespace client {

// The kinds of system events that an off-screen browser handles.
enum class EventKind {
  kLeftDown,
  kLeftUp,
  kLeftDragged,
  kRightDown,
  kRightUp,
  kRightDragged,
  kOtherDown,
  kOtherUp,
  kOtherDragged,
  kMoved,
  kEntered,
  kExited,
  kScroll,
  kKeyDown,
  kKeyUp,
  kFlagsChanged,  // a modifier key changed; the event holds only the state after it
  kOther
};

enum SystemModifier : uint32_t {
  kCapsLock = 1U << 0U,
  kShift = 1U << 1U,
  kControl = 1U << 2U,
  kOption = 1U << 3U,
  kCommand = 1U << 4U,
  kNumericPad = 1U << 5U,
  kFunction = 1U << 6U
};

enum class ScrollPhase { kNone, kBegan, kChanged, kEnded, kCancelled };

// A system's event in portable terms. A view sets the fields that its event has.
struct SystemEvent {
  EventKind kind = EventKind::kOther;
  uint32_t modifiers = 0;  // SystemModifier

  // Pointer events; in view coordinates.
  OsrPoint point;
  int clickCount = 0;

  // Scroll events; in the browser's units, positive towards the start.
  double deltaX = 0;
  double deltaY = 0;
  ScrollPhase phase = ScrollPhase::kNone;

  // Key events.
  bool isRepeat = false;  // of a key that is held
  // The key code of macOS; unset on other systems.
  std::optional<int> keyCode;
  // Without a macOS code: the key code of Windows and that of the system; 0 if unknown.
  int windowsKeyCode = 0;
  int nativeKeyCode = 0;
  std::u16string characters;
  std::u16string charactersIgnoringModifiers;
};

// The browser's event flags of an event.
uint32_t getModifiersForEvent(const SystemEvent& event);

// Whether a key event comes from the numeric key pad.
bool isKeyPadEvent(const SystemEvent& event);

// Whether a key event, or a change of the modifier keys, is a key's release.
bool isKeyUpEvent(const SystemEvent& event);

// The characters that the key types without Control, for systems that do not report them: Control
// turns letters into control characters.
std::u16string charactersWithoutControl(const SystemEvent& event);

// Fills all but the event's type.
void getKeyEvent(CefKeyEvent& keyEvent, const SystemEvent& event);

// The record of a pointer event at a point of the view.
CefMouseEvent mouseEventAt(const OsrPoint& point, uint32_t modifiers);

}  // namespace client
