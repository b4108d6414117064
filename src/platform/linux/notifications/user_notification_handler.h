#pragma once

#include "services/user_notification_handler.h"

namespace zantrio {

// Asks the desktop's notification server (org.freedesktop.Notifications on the session bus), which
// the bus starts when it has to. Title and message are shown as text, also by servers that
// understand markup.
class CUserNotificationHandlerLinux : public IUserNotificationHandler {
 public:
  void show(const UserNotification& notification) override;
};

}  // namespace zantrio
