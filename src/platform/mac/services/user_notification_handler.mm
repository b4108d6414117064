#include "platform/mac/services/user_notification_handler.h"

#import <Foundation/Foundation.h>

#include <new>

// The notification centre API is deprecated; older systems have no other.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio {
namespace {

NSString* fromUtf8(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

}  // namespace

void CUserNotificationHandlerMac::show(const UserNotification& notification) {
  @autoreleasepool {
    // Looked up by name, because systems without the centre lack the classes.
    Class const centerClass = NSClassFromString(@"NSUserNotificationCenter");
    Class const notificationClass = NSClassFromString(@"NSUserNotification");
    if (centerClass == Nil || notificationClass == Nil) {
      return;
    }
    NSUserNotification* const shown = [[[notificationClass alloc] init] autorelease];
    [shown setTitle:fromUtf8(notification.title)];
    [shown setInformativeText:fromUtf8(notification.message)];
    [shown setDeliveryDate:[NSDate date]];
    [shown setUserInfo:[NSDictionary dictionaryWithObject:fromUtf8(notification.url)
                                                   forKey:@"url"]];
    [[centerClass defaultUserNotificationCenter] scheduleNotification:shown];
  }
}

std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler() {
  return std::unique_ptr<IUserNotificationHandler>(new (std::nothrow) CUserNotificationHandlerMac);
}

}  // namespace zantrio
