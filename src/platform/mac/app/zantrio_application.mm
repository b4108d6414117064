#include "platform/mac/app/zantrio_application.h"

#include "platform/mac/app/application_delegate.h"

@implementation ZantrioApplication

- (BOOL)isHandlingSendEvent {
  return _handlingSendEvent;
}

- (void)setHandlingSendEvent:(BOOL)handlingSendEvent {
  _handlingSendEvent = handlingSendEvent;
}

- (void)sendEvent:(NSEvent*)event {
  const CefScopedSendingEvent sendingEvent;
  [super sendEvent:event];
}

// The system's own way would end the process at once. The browser is closed instead, and the
// process ends when it is gone; so a log-out, which asks by this too, waits rather than being
// refused.
- (void)terminate:(id)sender {
  (void)sender;
  [(ZantrioApplicationDelegate*)[self delegate] quit];
}

@end
