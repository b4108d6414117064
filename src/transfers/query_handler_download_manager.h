#pragma once

#include <json/value.h>

#include "transfers/query_handler_transfer_manager.h"
#include "zt_transfers/download_manager.h"

namespace zantrio {

// The bridge "downloadManagerBridge_IPC": the page drives downloads. Every group gets a folder,
// which a dialog may ask the user for. Starts the manager when the web application has announced
// itself and stops it when the browser closes.
class CQueryHandlerDownloadManager
    : public CQueryHandlerTransferManager<zt_transfers::CDownloadManager> {
 public:
  CQueryHandlerDownloadManager();

  // Keeps the download manager.
  void setHandlerData(const QueryHandlerContext& context) override;

  void appStarted() override;
  void appExiting() override;

 private:
  Json::Value getConfiguration(const Json::Value& parameters);
  Json::Value setConfiguration(const Json::Value& parameters);
  Json::Value createGroup(const Json::Value& parameters);
  Json::Value queueFiles(const Json::Value& parameters);
  Json::Value dequeueFiles(const Json::Value& parameters);
  Json::Value pauseGroup(const Json::Value& parameters);
  Json::Value resumeGroup(const Json::Value& parameters);
  Json::Value cancelGroup(const Json::Value& parameters);

  const bool autoDownload_ = true;  // told to the page, which decides for each group
};

}  // namespace zantrio
