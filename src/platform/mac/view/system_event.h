// From the system's events to those that all systems share.
#pragma once

#import <AppKit/AppKit.h>

#include "osr/input/system_event.h"

namespace client {

// `flags` are the system's modifier flags; gives those of SystemModifier.
uint32_t toSystemModifiers(NSUInteger flags);

// A point of the view's window, whose y axis points up, in the view and from its left upper corner.
OsrPoint toViewPoint(NSPoint pointInWindow, NSView* view);

// A mouse, scroll or key event, as the view sees it.
SystemEvent toSystemEvent(NSEvent* event, NSView* view);

}  // namespace client
