// The classes are declared by the system's headers; here they record.
#include "mac/fakes/user_notification_fake.h"

#import <Foundation/Foundation.h>

#include <cmath>

#include "mac/fakes/core_foundation_fake.h"

namespace zantrio::mac_test {

UserNotificationFake& userNotifications() {
  static UserNotificationFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

@implementation NSUserNotification
@dynamic title, subtitle, informativeText, actionButtonTitle, userInfo, deliveryDate,
    deliveryTimeZone, deliveryRepeatInterval, actualDeliveryDate, presented, remote, soundName,
    hasActionButton, activationType, otherButtonTitle, identifier, contentImage, hasReplyButton,
    responsePlaceholder, response;

- (id)init {
  ++userNotifications().liveNotifications;
  return [super init];
}

- (void)dealloc {
  --userNotifications().liveNotifications;
  [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}

- (void)setTitle:(NSString*)title {
  userNotifications().title = textOf(title);
}

- (void)setInformativeText:(NSString*)text {
  userNotifications().informativeText = textOf(text);
}

- (void)setDeliveryDate:(NSDate*)date {
  userNotifications().secondsFromNow = std::fabs([date timeIntervalSinceNow]);
}

- (void)setUserInfo:(NSDictionary*)information {
  std::string& recorded = userNotifications().userInfo;
  for (NSString* key in information) {
    recorded += textOf(key) + "=" + textOf([information objectForKey:key]) + "\n";
  }
}
@end

@implementation NSUserNotificationCenter
@dynamic delegate, scheduledNotifications, deliveredNotifications;

+ (NSUserNotificationCenter*)defaultUserNotificationCenter {
  static NSUserNotificationCenter* const center = [[NSUserNotificationCenter alloc] init];
  return userNotifications().hasCenter ? center : nil;
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  (void)notification;
  ++userNotifications().scheduled;
}

- (void)deliverNotification:(NSUserNotification*)notification {
  (void)notification;
}

- (void)removeScheduledNotification:(NSUserNotification*)notification {
  (void)notification;
}

- (void)removeDeliveredNotification:(NSUserNotification*)notification {
  (void)notification;
}

- (void)removeAllDeliveredNotifications {
}
@end
