#include "services/query_handler_event_notification.h"

#include <string>

#include "services/user_notification_handler.h"

namespace zantrio {
namespace {

std::string text(const Json::Value& properties, const char* key) {
  return properties.get(key, Json::Value()).asString();
}

}  // namespace

CQueryHandlerEventNotification::CQueryHandlerEventNotification() {
  registerMethod("handleEvent", &CQueryHandlerEventNotification::handleEvent);
}

Json::Value CQueryHandlerEventNotification::handleEvent(const Json::Value& parameters) {
  const auto notifications = createUserNotificationHandler();
  if (!notifications) {
    return {};
  }
  const Json::Value properties = parameters.get("properties", Json::Value());
  notifications->show(
      {text(properties, "title"), text(properties, "message"), text(properties, "url")});
  return {};
}

}  // namespace zantrio
