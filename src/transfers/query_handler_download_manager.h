#pragma once

#include <json/value.h>

#include "transfers/query_handler_transfer_manager.h"
#include "zt_transfers/download_manager.h"

namespace zantrio {

// The bridge "downloadManagerBridge_IPC": the page drives downloads. Every group gets a folder,
// for which the user may be asked in a dialog. The manager starts when the web application reports
// that it is ready, and stops when the browser closes. Thread: UI.
class CQueryHandlerDownloadManager
    : public CQueryHandlerTransferManager<zt_transfers::CDownloadManager> {
 public:
  CQueryHandlerDownloadManager();

 private:
  Json::Value getConfiguration(const Json::Value& parameters) override;
  Json::Value createGroup(const Json::Value& parameters) override;
  Json::Value dequeueFiles(const Json::Value& parameters);

  const bool autoDownload_ = true;  // reported to the page, which decides for each group
};

}  // namespace zantrio
