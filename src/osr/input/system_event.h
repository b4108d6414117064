#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "osr/view/osr_view.h"

namespace client {

// What a system event is, as far as an off-screen browser is concerned.
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
  kFlagsChanged,  // a modifier key went down or up, and the event tells only the state after it
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

// An event in terms that all systems share: a view fills in what its event has.
struct SystemEvent {
  EventKind kind = EventKind::kOther;
  uint32_t modifiers = 0;  // SystemModifier

  // Of pointer events, in the view.
  OsrPoint point;
  int clickCount = 0;

  // Of scroll events; in the browser's units, positive towards the start.
  double deltaX = 0;
  double deltaY = 0;
  ScrollPhase phase = ScrollPhase::kNone;

  // Of key events. The key's code in macOS's numbering; none on other systems.
  std::optional<int> keyCode;
  // Where there is none: the key's code by Windows' numbering, and by the system's own; 0 if
  // unknown.
  int windowsKeyCode = 0;
  int nativeKeyCode = 0;
  std::u16string characters;
  std::u16string charactersIgnoringModifiers;
};

}  // namespace client
