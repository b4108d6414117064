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

// The desktop's notifications. Ownership: the caller's; a notification outlives the object.
// Thread: UI.
class IUserNotificationHandler {
 public:
  virtual ~IUserNotificationHandler() = default;

  // Hands the notification to the desktop and returns at once. Where the desktop shows no
  // notifications it is dropped without a word.
  virtual void show(const UserNotification& notification) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler();

}  // namespace zantrio
