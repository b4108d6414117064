#include "app/log/guarded_call.h"
#include "bridge/platform_exceptions.h"
#include "osr/input/key_input.h"
#include "platform/mac/view/client_opengl_view.h"
#include "platform/mac/view/client_opengl_view_parts.h"
#include "platform/mac/view/system_event.h"

// The names of event types have newer forms, which older systems lack.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

using client::EditCommand;
using client::toSystemEvent;
using zantrio::guardedCall;

@implementation ClientOpenGLView (Input)

// Mouse

- (void)mouseDown:(NSEvent*)event {
  [self sendMouseClick:event button:MBT_LEFT isUp:false];
}

- (void)mouseUp:(NSEvent*)event {
  [self sendMouseClick:event button:MBT_LEFT isUp:true];
}

- (void)otherMouseDown:(NSEvent*)event {
  [self sendMouseClick:event button:MBT_MIDDLE isUp:false];
}

- (void)otherMouseUp:(NSEvent*)event {
  [self sendMouseClick:event button:MBT_MIDDLE isUp:true];
}

- (void)sendMouseClick:(NSEvent*)event button:(cef_mouse_button_type_t)button isUp:(bool)isUp {
  guardedCall("sendMouseClick",
              [&] { parts_->mouse.sendMouseClick(toSystemEvent(event, self), button, isUp); });
}

// The right button may start a rotation.
- (void)rightMouseDown:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)rightMouseUp:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)mouseMoved:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)mouseDragged:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)rightMouseDragged:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)otherMouseDragged:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)mouseEntered:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)mouseExited:(NSEvent*)event {
  [self handleMouse:event];
}

- (void)handleMouse:(NSEvent*)event {
  guardedCall("handleMouse", [&] { parts_->mouse.handle(toSystemEvent(event, self)); });
}

// Scrolling

- (void)scrollWheel:(NSEvent*)event {
  guardedCall("scrollWheel", [&] { parts_->scroll.watchFrom(toSystemEvent(event, self)); });
  [self sendScrollWheelEvet:event];
}

- (void)sendScrollWheelEvet:(NSEvent*)event {
  guardedCall("sendScrollWheelEvet",
              [&] { parts_->mouse.sendScrollWheel(toSystemEvent(event, self)); });
}

- (void)shortCircuitScrollWheelEvent:(NSEvent*)event {
  guardedCall("shortCircuitScrollWheelEvent",
              [&] { parts_->scroll.shortCircuit(toSystemEvent(event, self)); });
}

- (void)installEndWheelMonitor {
  // A plain pointer: the block must not retain the view, which removes the monitor on deallocation.
  void* const view = self;
  NSEvent* (^const handler)(NSEvent*) = ^NSEvent*(NSEvent* event) {
    [(ClientOpenGLView*)view shortCircuitScrollWheelEvent:event];
    return event;
  };
  endWheelMonitor_ = [[NSEvent addLocalMonitorForEventsMatchingMask:NSScrollWheelMask
                                                            handler:handler] retain];
}

- (void)removeEndWheelMonitor {
  if (endWheelMonitor_ != nil) {
    [NSEvent removeMonitor:endWheelMonitor_];
    [endWheelMonitor_ release];
    endWheelMonitor_ = nil;
  }
}

// Keyboard

- (void)keyDown:(NSEvent*)event {
  guardedCall("keyDown", [&] {
    // If the input method raises an exception, the press is an ordinary key.
    parts_->presses.press(toSystemEvent(event, self), [self, event] {
      zantrio::callCatchingPlatformExceptions(
          [&] { [self interpretKeyEvents:[NSArray arrayWithObject:event]]; });
    });
  });
}

- (void)keyUp:(NSEvent*)event {
  guardedCall("keyUp", [&] { parts_->keys.sendKeyUp(toSystemEvent(event, self)); });
}

- (void)flagsChanged:(NSEvent*)event {
  guardedCall("flagsChanged", [&] { parts_->keys.sendFlagsChanged(toSystemEvent(event, self)); });
}

// Edit commands

- (void)undo:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kUndo];
}

- (void)redo:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kRedo];
}

- (void)cut:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kCut];
}

- (void)copy:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kCopy];
}

- (void)paste:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kPaste];
}

- (void)delete:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kDelete];
}

- (void)selectAll:(id)sender {
  (void)sender;
  [self runEditCommand:EditCommand::kSelectAll];
}

- (void)runEditCommand:(EditCommand)command {
  guardedCall("runEditCommand", [&] { client::runEditCommand(*parts_->osr, command); });
}

@end
