#include "services/user_notification_handler.h"

#include <cmath>

#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// What the notification centre answers, and what was handed to it.
struct Notifications {
  bool hasCenter = true;
  int scheduled = 0;
  std::string title;
  std::string informativeText;
  std::string userInfo;  // as "key=value", one a line
  double secondsFromNow = -1;
  int alive = 0;
};

Notifications notifications;

}  // namespace

// The classes are declared by the system's headers; here they record.
@implementation NSUserNotification
@dynamic title, subtitle, informativeText, actionButtonTitle, userInfo, deliveryDate,
    deliveryTimeZone, deliveryRepeatInterval, actualDeliveryDate, presented, remote, soundName,
    hasActionButton, activationType, otherButtonTitle, identifier, contentImage, hasReplyButton,
    responsePlaceholder, response;

- (id)init {
  ++notifications.alive;
  return [super init];
}

- (void)dealloc {
  --notifications.alive;
  [super dealloc];
}

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}

- (void)setTitle:(NSString*)title {
  notifications.title = textOf(title);
}

- (void)setInformativeText:(NSString*)text {
  notifications.informativeText = textOf(text);
}

- (void)setDeliveryDate:(NSDate*)date {
  notifications.secondsFromNow = std::fabs([date timeIntervalSinceNow]);
}

- (void)setUserInfo:(NSDictionary*)information {
  std::string& recorded = notifications.userInfo;
  for (NSString* key in information) {
    recorded += textOf(key) + "=" + textOf([information objectForKey:key]) + "\n";
  }
}
@end

@implementation NSUserNotificationCenter
@dynamic delegate, scheduledNotifications, deliveredNotifications;

+ (NSUserNotificationCenter*)defaultUserNotificationCenter {
  static NSUserNotificationCenter* const center = [[NSUserNotificationCenter alloc] init];
  return notifications.hasCenter ? center : nil;
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  (void)notification;
  ++notifications.scheduled;
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

namespace zantrio::mac_test {
namespace {

class UserNotificationHandlerMac : public MacTest {
 protected:
  UserNotificationHandlerMac() { notifications = {}; }

  void TearDown() override {
    MacTest::TearDown();
    EXPECT_EQ(notifications.alive, 0);
  }
};

TEST_F(UserNotificationHandlerMac, SchedulesTheTextsInUtf8ForNow) {
  createUserNotificationHandler()->show({"Zo\xC3\xAB", "caf\xC3\xA9", "https://\xC3\xBC/"});

  EXPECT_EQ(notifications.scheduled, 1);
  EXPECT_EQ(notifications.title, "Zo\u00EB");
  EXPECT_EQ(notifications.informativeText, "caf\u00E9");
  EXPECT_EQ(notifications.userInfo, "url=https://\u00FC/\n");
  EXPECT_GE(notifications.secondsFromNow, 0);
  EXPECT_LT(notifications.secondsFromNow, 60);
}

TEST_F(UserNotificationHandlerMac, EmptyTextsAreShownAsTheyAre) {
  createUserNotificationHandler()->show({});
  EXPECT_EQ(notifications.scheduled, 1);
  EXPECT_EQ(notifications.title, "");
  EXPECT_EQ(notifications.userInfo, "url=\n");
}

TEST_F(UserNotificationHandlerMac, WithoutACenterTheNotificationIsDropped) {
  notifications.hasCenter = false;
  createUserNotificationHandler()->show({"title", "message", "url"});
  EXPECT_EQ(notifications.scheduled, 0);
}

}  // namespace
}  // namespace zantrio::mac_test
