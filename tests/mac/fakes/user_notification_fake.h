#pragma once

#include <string>

namespace zantrio::mac_test {

// What the notification centre answers, and what was handed to it.
struct UserNotificationFake {
  bool hasCenter = true;
  int scheduled = 0;
  std::string title;
  std::string informativeText;
  std::string userInfo;  // as "key=value", one a line
  double secondsFromNow = -1;
  int liveNotifications = 0;
};

UserNotificationFake& userNotifications();

}  // namespace zantrio::mac_test
