#pragma once

#include <json/value.h>

#include "bridge/query_handler_base.h"

namespace zantrio {

class IWebAppLifeCycleCallback;

// The bridge "nativeAppBridge_IPC": the page reports that it is ready or wants to leave, opens
// URLs with the system and fills the clipboard. Whether the system did as asked is not told.
class CQueryHandlerNativeApp : public CQueryHandlerBase {
 public:
  CQueryHandlerNativeApp();

  // Keeps the life-cycle callback in place of an earlier one.
  void setHandlerData(const QueryHandlerContext& context) override;

 private:
  Json::Value onAppReady(const Json::Value& parameters);
  Json::Value onAppExit(const Json::Value& parameters);
  Json::Value openURL(const Json::Value& parameters);
  Json::Value copyToClipboard(const Json::Value& parameters);

  IWebAppLifeCycleCallback* lifeCycleCallback_ = nullptr;  // not owned
};

}  // namespace zantrio
