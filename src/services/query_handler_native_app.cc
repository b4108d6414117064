#include "services/query_handler_native_app.h"

#include <string>

#include "app/log/logger.h"
#include "bridge/query_handler_context.h"
#include "bridge/web_app_life_cycle_callback.h"
#include "services/clipboard.h"
#include "services/os_file_explorer.h"

namespace zantrio {

CQueryHandlerNativeApp::CQueryHandlerNativeApp() {
  registerMethod("onAppReady", &CQueryHandlerNativeApp::onAppReady);
  registerMethod("onAppExit", &CQueryHandlerNativeApp::onAppExit);
  registerMethod("openURL", &CQueryHandlerNativeApp::openURL);
  registerMethod("copyToClipboard", &CQueryHandlerNativeApp::copyToClipboard);
}

void CQueryHandlerNativeApp::setHandlerData(const QueryHandlerContext& context) {
  lifeCycleCallback_ = context.lifeCycleCallback;
}

Json::Value CQueryHandlerNativeApp::onAppReady(const Json::Value& /*parameters*/) {
  logInformation("QueryHandlerNativeApp: App ready");
  if (lifeCycleCallback_ != nullptr) {
    lifeCycleCallback_->onStartup();
  }
  return {};
}

Json::Value CQueryHandlerNativeApp::onAppExit(const Json::Value& /*parameters*/) {
  logInformation("QueryHandlerNativeApp: onAppExit called");
  if (lifeCycleCallback_ != nullptr) {
    lifeCycleCallback_->onShutdown();
  }
  return {};
}

Json::Value CQueryHandlerNativeApp::openURL(const Json::Value& parameters) {
  const std::string url = parameters.get("url", Json::Value()).asString();
  if (const auto explorer = createOsFileExplorer()) {
    explorer->openURL(url);
  }
  return {};
}

Json::Value CQueryHandlerNativeApp::copyToClipboard(const Json::Value& parameters) {
  const std::string text = parameters.get("value", Json::Value()).asString();
  if (const auto clipboard = createClipboard()) {
    clipboard->copyText(text);
  }
  return {};
}

}  // namespace zantrio
