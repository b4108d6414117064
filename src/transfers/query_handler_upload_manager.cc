#include "transfers/query_handler_upload_manager.h"

#include <exception>

#include "bridge/query_handler_context.h"

namespace zantrio {
namespace {

using zt_transfers::CUploadManager;

Json::Value emptyObject() {
  return Json::Value(Json::objectValue);
}

}  // namespace

CQueryHandlerUploadManager::CQueryHandlerUploadManager()
    : CQueryHandlerTransferManager("QueryHandlerUploadManager") {
  registerMethod("getConfiguration", &CQueryHandlerUploadManager::getConfiguration);
  registerMethod("setConfiguration", &CQueryHandlerUploadManager::setConfiguration);
  registerMethod("fetchGroupsState", &CQueryHandlerUploadManager::fetchGroupsState);
  registerMethod("createGroup", &CQueryHandlerUploadManager::createGroup);
  registerMethod("queueFiles", &CQueryHandlerUploadManager::queueFiles);
  registerMethod("markQueue", &CQueryHandlerUploadManager::markQueue);
  registerMethod("dequeueFiles", &CQueryHandlerUploadManager::dequeueFiles);
  registerMethod("unmarkQueue", &CQueryHandlerUploadManager::unmarkQueue);
  registerMethod("pauseGroup", &CQueryHandlerUploadManager::pauseGroup);
  registerMethod("resumeGroup", &CQueryHandlerUploadManager::resumeGroup);
  registerMethod("cancelGroup", &CQueryHandlerUploadManager::cancelGroup);
}

void CQueryHandlerUploadManager::setHandlerData(const QueryHandlerContext& context) {
  manager_ = context.uploadManager;
}

void CQueryHandlerUploadManager::appStarted() {
  logInformation("Starting up Upload Manager");
  manager_->startup();
}

void CQueryHandlerUploadManager::appExiting() {
  logInformation("Shutting down Upload Manager");
  manager_->shutdown();
}

Json::Value CQueryHandlerUploadManager::getConfiguration(const Json::Value& /*parameters*/) {
  Json::Value answer;
  toJson(manager_->getConfiguration(), answer);
  return answer;
}

Json::Value CQueryHandlerUploadManager::setConfiguration(const Json::Value& parameters) {
  changeConfiguration(parameters);
  return getConfiguration(parameters);
}

Json::Value CQueryHandlerUploadManager::createGroup(const Json::Value& parameters) {
  Json::Value answer = emptyGroupAnswer();
  try {
    fillCreatedGroup(parameters, answer);
  } catch (const std::exception& exception) {
    logError("createGroup", ": Exception: ", exception.what());
  }
  return answer;
}

void CQueryHandlerUploadManager::fillCreatedGroup(const Json::Value& parameters,
                                                  Json::Value& answer) {
  const GroupRequest group = readGroupRequest(parameters);
  logInformation("Creating upload group. Bucket id: ", group.bucketId,
                 ", bucket type: ", group.bucketType, ", token: ", group.token,
                 ", token expires: ", group.tokenExpires);
  const std::int32_t id =
      manager_->createGroup(group.bucketId, group.bucketType, group.token, group.tokenExpires);
  if (id != kNoGroup) {
    fillGroupAnswer(id, answer);
  }
}

Json::Value CQueryHandlerUploadManager::queueFiles(const Json::Value& parameters) {
  changeFiles(parameters, &CUploadManager::queueFiles, "Adding", "to");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::markQueue(const Json::Value& parameters) {
  changeGroup(parameters, &CUploadManager::markQueue, "Marked");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::dequeueFiles(const Json::Value& parameters) {
  changeFiles(parameters, &CUploadManager::dequeueFile, "Removing", "from");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::unmarkQueue(const Json::Value& parameters) {
  changeGroup(parameters, &CUploadManager::unmarkQueue, "Unmarked");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::pauseGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CUploadManager::pauseGroup, "Paused");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::resumeGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CUploadManager::resumeGroup, "Resumed");
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::cancelGroup(const Json::Value& parameters) {
  changeGroup(parameters, &CUploadManager::cancelGroup, "Canceled");
  return emptyObject();
}

}  // namespace zantrio
