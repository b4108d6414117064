#pragma once

#include <Poco/SharedPtr.h>
#include <json/value.h>

#include "bridge/query_handler_base.h"
#include "browser/app_lifecycle_events_handler.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// The bridge "uploadManagerBridge_IPC": the page drives uploads. Starts the manager when the web
// application has announced itself and stops it when the browser closes.
//
// A method that is called before the manager was handed over throws Poco::NullPointerException,
// which the page gets as a failure.
class CQueryHandlerUploadManager : public CQueryHandlerBase, public IAppLifecycleEventsHandler {
 public:
  CQueryHandlerUploadManager();

  // Keeps the upload manager.
  void setHandlerData(const QueryHandlerContext& context) override;
  // Kind 2: this object's IAppLifecycleEventsHandler.
  Poco::Any getHandlerData(int kind) override;

  void appStarted() override;
  void appExiting() override;

 private:
  Json::Value getConfiguration(const Json::Value& parameters);
  Json::Value setConfiguration(const Json::Value& parameters);
  Json::Value fetchGroupsState(const Json::Value& parameters);
  Json::Value createGroup(const Json::Value& parameters);
  Json::Value queueFiles(const Json::Value& parameters);
  Json::Value markQueue(const Json::Value& parameters);
  Json::Value dequeueFiles(const Json::Value& parameters);
  Json::Value unmarkQueue(const Json::Value& parameters);
  Json::Value pauseGroup(const Json::Value& parameters);
  Json::Value resumeGroup(const Json::Value& parameters);
  Json::Value cancelGroup(const Json::Value& parameters);

  void fillCreatedGroup(const Json::Value& parameters, Json::Value& answer);

  Poco::SharedPtr<zt_transfers::CUploadManager> manager_;
};

}  // namespace zantrio
