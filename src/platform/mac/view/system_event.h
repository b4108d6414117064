// Converts AppKit's events to portable ones.
#pragma once

#import <AppKit/AppKit.h>

#include "osr/input/system_event.h"

namespace client {

// Converts modifier flags to SystemModifier.
uint32_t toSystemModifiers(NSUInteger flags);

// Converts a window point, whose y axis points up, to the view's upper left origin.
OsrPoint toViewPoint(NSPoint pointInWindow, NSView* view);

// A mouse, scroll or key event, as the view sees it.
SystemEvent toSystemEvent(NSEvent* event, NSView* view);

}  // namespace client
