#include "transfers/query_handler_download_manager.h"

#include "bridge/query_handler_context.h"
#include "transfers/download_path.h"
#include "transfers/wide_text.h"

namespace zantrio {

using zt_transfers::CDownloadManager;

CQueryHandlerDownloadManager::CQueryHandlerDownloadManager()
    : CQueryHandlerTransferManager("QueryHandlerDownloadManager") {
  registerMethod("getConfiguration", &CQueryHandlerDownloadManager::getConfiguration);
  registerMethod("setConfiguration", &CQueryHandlerDownloadManager::setConfiguration);
  registerMethod("fetchGroupsState", &CQueryHandlerDownloadManager::fetchGroupsState);
  registerMethod("createGroup", &CQueryHandlerDownloadManager::createGroup);
  registerMethod("queueFiles", &CQueryHandlerDownloadManager::queueFiles);
  registerMethod("dequeueFiles", &CQueryHandlerDownloadManager::dequeueFiles);
  registerMethod("pauseGroup", &CQueryHandlerDownloadManager::pauseGroup);
  registerMethod("resumeGroup", &CQueryHandlerDownloadManager::resumeGroup);
  registerMethod("cancelGroup", &CQueryHandlerDownloadManager::cancelGroup);
}

void CQueryHandlerDownloadManager::setHandlerData(const QueryHandlerContext& context) {
  manager_ = context.downloadManager;
}

void CQueryHandlerDownloadManager::appStarted() {
  logInformation("Starting up download manager");
  manager_->startup();
}

void CQueryHandlerDownloadManager::appExiting() {
  logInformation("Shutting down download manager");
  manager_->shutdown();
}

Json::Value CQueryHandlerDownloadManager::getConfiguration(const Json::Value& /*parameters*/) {
  Json::Value answer;
  toJson(manager_->getConfiguration(), answer);
  answer["autoDownload"] = autoDownload_;
  return answer;
}

Json::Value CQueryHandlerDownloadManager::setConfiguration(const Json::Value& parameters) {
  changeConfiguration(parameters);
  return getConfiguration(parameters);
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
  Json::Value answer = emptyGroupAnswer();
  fillGroupAnswer(id, answer);
  return answer;
}

Json::Value CQueryHandlerDownloadManager::queueFiles(const Json::Value& parameters) {
  changeFiles(parameters, &CDownloadManager::queueFiles, "Adding", "to");
  return Json::Value(Json::objectValue);
}

Json::Value CQueryHandlerDownloadManager::dequeueFiles(const Json::Value& parameters) {
  changeFiles(parameters, &CDownloadManager::dequeueFiles, "Removing", "from");
  return Json::Value(Json::objectValue);
}

Json::Value CQueryHandlerDownloadManager::pauseGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CDownloadManager::pauseGroup, "Paused");
  return {};
}

Json::Value CQueryHandlerDownloadManager::resumeGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CDownloadManager::resumeGroup, "Resumed");
  return {};
}

Json::Value CQueryHandlerDownloadManager::cancelGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CDownloadManager::cancelGroup, "Canceled");
  return {};
}

}  // namespace zantrio
