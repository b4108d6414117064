#pragma once

#include <memory>
#include <string>

namespace zantrio {

// A desktop notification; all texts are UTF-8.
struct UserNotification {
  std::string title;
  std::string message;
  std::string url;  // kept with the notification; a click on it does nothing
};

// Shows desktop notifications. Ownership: the caller's; a notification outlives the object. Thread:
// UI.
class IUserNotificationHandler {
 public:
  virtual ~IUserNotificationHandler() = default;

  // Sends the notification to the desktop without waiting. Without a notification service it is
  // dropped silently.
  virtual void show(const UserNotification& notification) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler();

}  // namespace zantrio
