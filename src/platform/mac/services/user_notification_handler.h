#pragma once

#include "services/user_notification_handler.h"

namespace zantrio {

// Schedules the notification for immediate delivery by the notification centre, if the system has
// one.
class CUserNotificationHandlerMac : public IUserNotificationHandler {
 public:
  void show(const UserNotification& notification) override;
};

}  // namespace zantrio
