#include "services/user_notification_handler.h"

#include <cmath>

#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/mac_fixture.h"

using namespace zantrio::mac_test;

namespace {

// The calls of the notification centre.
struct NotificationRecord {
  bool hasCenter = true;
  int scheduled = 0;
  std::string title;
  std::string informativeText;
  std::string url;
  double secondsFromNow = -1;
  int alive = 0;
};

NotificationRecord notifications;

}  // namespace

// Implements the recorded part of the classes that the system's headers declare.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wincomplete-implementation"

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
  notifications.url = [information count] == 1 ? textOf([information objectForKey:@"url"]) : "?";
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

@end

#pragma clang diagnostic pop

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
  EXPECT_EQ(notifications.url, "https://\u00FC/");
  EXPECT_GE(notifications.secondsFromNow, 0);
  EXPECT_LT(notifications.secondsFromNow, 60);
  createUserNotificationHandler()->show({});
  EXPECT_EQ(notifications.scheduled, 2);
  EXPECT_EQ(notifications.title, "");
}

TEST_F(UserNotificationHandlerMac, DropsTheNotificationWithoutACenter) {
  notifications.hasCenter = false;
  createUserNotificationHandler()->show({"title", "message", "url"});
  EXPECT_EQ(notifications.scheduled, 0);
}

}  // namespace
}  // namespace zantrio::mac_test
