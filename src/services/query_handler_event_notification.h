#pragma once

#include <json/value.h>

#include "bridge/query_handler_base.h"

namespace zantrio {

// The bridge "eventNotificationBridge_IPC": the page shows a desktop notification. Whether the
// desktop displayed it is not reported. Thread: UI.
class CQueryHandlerEventNotification : public CQueryHandlerBase {
 public:
  CQueryHandlerEventNotification();

 private:
  Json::Value handleEvent(const Json::Value& parameters);
};

}  // namespace zantrio
