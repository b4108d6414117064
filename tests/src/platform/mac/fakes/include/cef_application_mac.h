// The framework's protocols of the application object on macOS.
#pragma once

#import <AppKit/AppKit.h>

@protocol CrAppProtocol
- (BOOL)isHandlingSendEvent;
@end

@protocol CrAppControlProtocol <CrAppProtocol>
- (void)setHandlingSendEvent:(BOOL)handlingSendEvent;
@end

@protocol CefAppProtocol <CrAppControlProtocol>
@end

// Tells the application object, for as long as it lives, that an event is being sent.
class CefScopedSendingEvent {
 public:
  CefScopedSendingEvent()
      : application_((NSApplication<CefAppProtocol>*)[NSApplication sharedApplication]),
        before_([application_ isHandlingSendEvent]) {
    [application_ setHandlingSendEvent:YES];
  }
  ~CefScopedSendingEvent() { [application_ setHandlingSendEvent:before_]; }

 private:
  NSApplication<CefAppProtocol>* const application_;
  const BOOL before_;
};
