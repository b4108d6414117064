#pragma once

#import <AppKit/AppKit.h>

#include "include/cef_application_mac.h"

// The application class that the browser framework requires: it reports whether an event is being
// sent. The bundle's NSPrincipalClass names it.
@interface ZantrioApplication : NSApplication <CefAppProtocol> {
 @private
  BOOL _handlingSendEvent;
}
@end
