#include "transfers/query_handler_download_manager.h"

#include "transfers/download_path.h"

namespace zantrio {

using zt_transfers::CDownloadManager;

CQueryHandlerDownloadManager::CQueryHandlerDownloadManager()
    : CQueryHandlerTransferManager({&QueryHandlerContext::downloadManager,
                                    "QueryHandlerDownloadManager: ", "Starting up download manager",
                                    "Shutting down download manager", Json::Value()}) {
  registerMethod("dequeueFiles", &CQueryHandlerDownloadManager::dequeueFiles);
}

Json::Value CQueryHandlerDownloadManager::getConfiguration(const Json::Value& parameters) {
  Json::Value response = CQueryHandlerTransferManager::getConfiguration(parameters);
  response["autoDownload"] = autoDownload_;
  return response;
}

Json::Value CQueryHandlerDownloadManager::createGroup(const Json::Value& parameters) {
  const GroupRequest group = readGroupRequest(parameters);
  std::string path;
  if (!resolveDownloadPath(parameters, path)) {
    logError("Failed to obtain download path for bucket with id ", group.bucketId);
    return {};
  }
  logInformation("Creating download group. Bucket id: ", group.bucketId,
                 ", bucket type: ", group.bucketType, ", token: ", group.token,
                 ", token expires: ", group.tokenExpires, ", download path: ", path);
  const std::int32_t id = manager_->createGroup(group.bucketId, group.bucketType, group.token,
                                                group.tokenExpires, widenBytes(path));
  if (id == kNoGroup) {
    return {};
  }
  Json::Value response = emptyGroupResponse();
  fillGroupResponse(id, response);
  return response;
}

Json::Value CQueryHandlerDownloadManager::dequeueFiles(const Json::Value& parameters) {
  return changeFiles(parameters, &CDownloadManager::dequeueFiles, "Removing", "from");
}

}  // namespace zantrio
