#pragma once

#import <AppKit/AppKit.h>

#include "include/cef_application_mac.h"

// The application object, as the browser framework needs it: it tells whether an event is being
// sent. It is named as the principal class in the bundle's information.
@interface ZantrioApplication : NSApplication <CefAppProtocol> {
 @private
  BOOL _handlingSendEvent;
}
@end
