#include "services/query_handler_native_app.h"

#include <string>

#include "app/log/logger.h"
#include "bridge/query_handler_context.h"
#include "bridge/web_app_life_cycle_callback.h"
#include "services/clipboard.h"
#include "services/os_file_explorer.h"
#include "shown_text/secrets.h"

namespace zantrio {

CQueryHandlerNativeApp::CQueryHandlerNativeApp() {
  registerMethod("onAppReady", &CQueryHandlerNativeApp::onAppReady);
  registerMethod("onAppExit", &CQueryHandlerNativeApp::onAppExit);
  registerMethod("openURL", &CQueryHandlerNativeApp::openURL);
  registerMethod("copyToClipboard", &CQueryHandlerNativeApp::copyToClipboard);
}

void CQueryHandlerNativeApp::setHandlerData(const QueryHandlerContext& context) {
  CQueryHandlerBase::setHandlerData(context);
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
  std::string url = parameters.get("url", Json::Value()).asString();
  const auto explorer = createOsFileExplorer();
  if (explorer && !explorer->openURL(url)) {
    shown_text::maskSecrets(url);
    logWarning("QueryHandlerNativeApp: the URL was refused, or nothing can open it: ", url);
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
