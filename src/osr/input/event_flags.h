// From system events to the browser's event records.
#pragma once

#include "osr/input/system_event.h"

namespace client {

// The browser's event flags of an event.
uint32_t getModifiersForEvent(const SystemEvent& event);

// Whether a key event comes from the numeric key pad.
bool isKeyPadEvent(const SystemEvent& event);

// Whether a key event, or a change of the modifier keys, is a key's release.
bool isKeyUpEvent(const SystemEvent& event);

// What the key would type without Control, for systems that do not tell: Control turns letters into
// control characters.
std::u16string charactersWithoutControl(const SystemEvent& event);

// Fills all but the event's type.
void getKeyEvent(CefKeyEvent& keyEvent, const SystemEvent& event);

// The record of a pointer event at a point of the view.
CefMouseEvent mouseEventAt(const OsrPoint& point, uint32_t modifiers);

}  // namespace client
