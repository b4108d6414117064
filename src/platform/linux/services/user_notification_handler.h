#pragma once

#include "services/user_notification_handler.h"

namespace zantrio {

// Uses the desktop's notification server (org.freedesktop.Notifications on the session bus), which
// the bus activates on demand. Title and message are shown as plain text, also by servers that
// support markup.
class CUserNotificationHandlerLinux : public IUserNotificationHandler {
 public:
  void show(const UserNotification& notification) override;
};

}  // namespace zantrio
