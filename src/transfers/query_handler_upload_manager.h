#pragma once

#include <json/value.h>

#include "transfers/query_handler_transfer_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// The bridge "uploadManagerBridge_IPC": the page drives uploads. Starts the manager when the web
// application has announced itself and stops it when the browser closes.
class CQueryHandlerUploadManager
    : public CQueryHandlerTransferManager<zt_transfers::CUploadManager> {
 public:
  CQueryHandlerUploadManager();

  // Keeps the upload manager.
  void setHandlerData(const QueryHandlerContext& context) override;

  void appStarted() override;
  void appExiting() override;

 private:
  Json::Value getConfiguration(const Json::Value& parameters);
  Json::Value setConfiguration(const Json::Value& parameters);
  Json::Value createGroup(const Json::Value& parameters);
  Json::Value queueFiles(const Json::Value& parameters);
  Json::Value markQueue(const Json::Value& parameters);
  Json::Value dequeueFiles(const Json::Value& parameters);
  Json::Value unmarkQueue(const Json::Value& parameters);
  Json::Value pauseGroup(const Json::Value& parameters);
  Json::Value resumeGroup(const Json::Value& parameters);
  Json::Value cancelGroup(const Json::Value& parameters);

  void fillCreatedGroup(const Json::Value& parameters, Json::Value& answer);
};

}  // namespace zantrio
