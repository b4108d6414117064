#include "platform/mac/view/system_event.h"

// The names of event types and modifier keys have newer forms, which older systems lack.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace client {
namespace {

// Points per line of an ordinary wheel.
constexpr double kPointsOfALine = 40;

EventKind kindOf(NSEvent* event) {
  switch ([event type]) {
    case NSLeftMouseDown:
      return EventKind::kLeftDown;
    case NSLeftMouseUp:
      return EventKind::kLeftUp;
    case NSLeftMouseDragged:
      return EventKind::kLeftDragged;
    case NSRightMouseDown:
      return EventKind::kRightDown;
    case NSRightMouseUp:
      return EventKind::kRightUp;
    case NSRightMouseDragged:
      return EventKind::kRightDragged;
    case NSOtherMouseDown:
      return EventKind::kOtherDown;
    case NSOtherMouseUp:
      return EventKind::kOtherUp;
    case NSOtherMouseDragged:
      return EventKind::kOtherDragged;
    case NSMouseMoved:
      return EventKind::kMoved;
    case NSMouseEntered:
      return EventKind::kEntered;
    case NSMouseExited:
      return EventKind::kExited;
    case NSScrollWheel:
      return EventKind::kScroll;
    case NSKeyDown:
      return EventKind::kKeyDown;
    case NSKeyUp:
      return EventKind::kKeyUp;
    case NSFlagsChanged:
      return EventKind::kFlagsChanged;
    default:
      return EventKind::kOther;
  }
}

struct ModifierPair {
  NSUInteger flag;
  uint32_t modifier;
};

constexpr ModifierPair kModifiers[] = {
    {NSAlphaShiftKeyMask, kCapsLock}, {NSShiftKeyMask, kShift},
    {NSControlKeyMask, kControl},     {NSAlternateKeyMask, kOption},
    {NSCommandKeyMask, kCommand},     {NSNumericPadKeyMask, kNumericPad},
    {NSFunctionKeyMask, kFunction},
};

std::u16string toText(NSString* string) {
  std::u16string text([string length], u'\0');
  [string getCharacters:reinterpret_cast<unichar*>(text.data()) range:NSMakeRange(0, text.size())];
  return text;
}

ScrollPhase phaseOf(NSEvent* event) {
  if (![event respondsToSelector:@selector(phase)]) {
    return ScrollPhase::kNone;
  }
  switch ([event phase]) {
    case NSEventPhaseBegan:
      return ScrollPhase::kBegan;
    case NSEventPhaseStationary:
    case NSEventPhaseChanged:
      return ScrollPhase::kChanged;
    case NSEventPhaseEnded:
      return ScrollPhase::kEnded;
    case NSEventPhaseCancelled:
      return ScrollPhase::kCancelled;
    default:
      return ScrollPhase::kNone;
  }
}

void addScrolling(NSEvent* event, SystemEvent& result) {
  const double unit = [event hasPreciseScrollingDeltas] ? 1 : kPointsOfALine;
  result.deltaX = [event scrollingDeltaX] * unit;
  result.deltaY = [event scrollingDeltaY] * unit;
  result.phase = phaseOf(event);
}

void addCharacters(NSEvent* event, SystemEvent& result) {
  result.characters = toText([event characters]);
  result.charactersIgnoringModifiers = toText([event charactersIgnoringModifiers]);
}

// AppKit raises an exception for properties of another event type.
void addDetails(NSEvent* event, SystemEvent& result) {
  switch (result.kind) {
    case EventKind::kLeftDown:
    case EventKind::kLeftUp:
    case EventKind::kRightDown:
    case EventKind::kRightUp:
    case EventKind::kOtherDown:
    case EventKind::kOtherUp:
      result.clickCount = static_cast<int>([event clickCount]);
      break;
    case EventKind::kScroll:
      addScrolling(event, result);
      break;
    case EventKind::kKeyDown:
    case EventKind::kKeyUp:
      addCharacters(event, result);
      result.isRepeat = [event isARepeat];
      result.keyCode = [event keyCode];
      break;
    case EventKind::kFlagsChanged:
      result.keyCode = [event keyCode];
      break;
    default:
      break;
  }
}

}  // namespace

uint32_t toSystemModifiers(NSUInteger flags) {
  uint32_t modifiers = 0;
  for (const ModifierPair& pair : kModifiers) {
    if ((flags & pair.flag) != 0) {
      modifiers |= pair.modifier;
    }
  }
  return modifiers;
}

OsrPoint toViewPoint(NSPoint pointInWindow, NSView* view) {
  const NSPoint point = [view convertPoint:pointInWindow fromView:nil];
  return {point.x, NSHeight([view bounds]) - point.y};
}

SystemEvent toSystemEvent(NSEvent* event, NSView* view) {
  SystemEvent result;
  result.kind = kindOf(event);
  result.modifiers = toSystemModifiers([event modifierFlags]);
  result.point = toViewPoint([event locationInWindow], view);
  addDetails(event, result);
  return result;
}

}  // namespace client
