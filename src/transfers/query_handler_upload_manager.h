#pragma once

#include <json/value.h>

#include "transfers/query_handler_transfer_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// The bridge "uploadManagerBridge_IPC": the page drives uploads. The manager starts when the web
// application reports that it is ready, and stops when the browser closes. Thread: UI.
class CQueryHandlerUploadManager
    : public CQueryHandlerTransferManager<zt_transfers::CUploadManager> {
 public:
  CQueryHandlerUploadManager();

 private:
  Json::Value createGroup(const Json::Value& parameters) override;
  Json::Value dequeueFiles(const Json::Value& parameters);
  Json::Value markQueue(const Json::Value& parameters);
  Json::Value unmarkQueue(const Json::Value& parameters);

  void fillCreatedGroup(const Json::Value& parameters, Json::Value& response);
};

}  // namespace zantrio
