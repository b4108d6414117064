#pragma once

#include <json/value.h>

#include "bridge/query_handler_base.h"

namespace zantrio {

class IWebAppLifeCycleCallback;

// The bridge "nativeAppBridge_IPC": the page reports that it is ready or wants to exit, opens URLs
// with the system and fills the clipboard. Whether the system succeeded is not reported. Thread:
// UI.
class CQueryHandlerNativeApp : public CQueryHandlerBase {
 public:
  CQueryHandlerNativeApp();

  // Replaces the life-cycle callback.
  void setHandlerData(const QueryHandlerContext& context) override;

 private:
  Json::Value onAppReady(const Json::Value& parameters);
  Json::Value onAppExit(const Json::Value& parameters);
  Json::Value openURL(const Json::Value& parameters);
  Json::Value copyToClipboard(const Json::Value& parameters);

  IWebAppLifeCycleCallback* lifeCycleCallback_ = nullptr;  // not owned
};

}  // namespace zantrio
