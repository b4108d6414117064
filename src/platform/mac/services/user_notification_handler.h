#pragma once

#include "services/user_notification_handler.h"

namespace zantrio {

// Schedules the notification, for now, on the system's notification centre, where there is one.
class CUserNotificationHandlerMac : public IUserNotificationHandler {
 public:
  void show(const UserNotification& notification) override;
};

}  // namespace zantrio
