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

// The default would end the process at once. Instead the browser is closed, and the process ends
// after it. A log-out, which also calls this, waits instead of being refused.
- (void)terminate:(id)sender {
  (void)sender;
  [(ZantrioApplicationDelegate*)[self delegate] quit];
}

@end
