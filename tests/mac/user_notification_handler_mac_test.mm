#include "mac/fakes/user_notification_fake.h"
#include "mac/mac_fixture.h"
#include "services/user_notification_handler.h"

namespace zantrio::mac_test {
namespace {

using UserNotificationHandlerMac = MacTest;

TEST_F(UserNotificationHandlerMac, SchedulesTheTextsInUtf8ForNow) {
  createUserNotificationHandler()->show({"Zo\xC3\xAB", "caf\xC3\xA9", "https://\xC3\xBC/"});

  const UserNotificationFake& notification = userNotifications();
  EXPECT_EQ(notification.scheduled, 1);
  EXPECT_EQ(notification.title, "Zo\u00EB");
  EXPECT_EQ(notification.informativeText, "caf\u00E9");
  EXPECT_EQ(notification.userInfo, "url=https://\u00FC/\n");
  EXPECT_GE(notification.secondsFromNow, 0);
  EXPECT_LT(notification.secondsFromNow, 60);
}

TEST_F(UserNotificationHandlerMac, EmptyTextsAreShownAsTheyAre) {
  createUserNotificationHandler()->show({});
  EXPECT_EQ(userNotifications().scheduled, 1);
  EXPECT_EQ(userNotifications().title, "");
  EXPECT_EQ(userNotifications().userInfo, "url=\n");
}

TEST_F(UserNotificationHandlerMac, WithoutACenterTheNotificationIsDropped) {
  userNotifications().hasCenter = false;
  createUserNotificationHandler()->show({"title", "message", "url"});
  EXPECT_EQ(userNotifications().scheduled, 0);
}

}  // namespace
}  // namespace zantrio::mac_test
