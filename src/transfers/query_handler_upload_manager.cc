#include "transfers/query_handler_upload_manager.h"

#include <exception>

namespace zantrio {

using zt_transfers::CUploadManager;

CQueryHandlerUploadManager::CQueryHandlerUploadManager()
    : CQueryHandlerTransferManager({&QueryHandlerContext::uploadManager,
                                    "QueryHandlerUploadManager: ", "Starting up Upload Manager",
                                    "Shutting down Upload Manager",
                                    Json::Value(Json::objectValue)}) {
  registerMethod("dequeueFiles", &CQueryHandlerUploadManager::dequeueFiles);
  registerMethod("markQueue", &CQueryHandlerUploadManager::markQueue);
  registerMethod("unmarkQueue", &CQueryHandlerUploadManager::unmarkQueue);
}

Json::Value CQueryHandlerUploadManager::createGroup(const Json::Value& parameters) {
  Json::Value response = emptyGroupResponse();
  try {
    fillCreatedGroup(parameters, response);
  } catch (const std::exception& exception) {
    logError("createGroup", ": Exception: ", exception.what());
  }
  return response;
}

void CQueryHandlerUploadManager::fillCreatedGroup(const Json::Value& parameters,
                                                  Json::Value& response) {
  const GroupRequest group = readGroupRequest(parameters);
  logInformation("Creating upload group. Bucket id: ", group.bucketId,
                 ", bucket type: ", group.bucketType, ", token: ", group.token,
                 ", token expires: ", group.tokenExpires);
  const std::int32_t id =
      manager_->createGroup(group.bucketId, group.bucketType, group.token, group.tokenExpires);
  if (id != kNoGroup) {
    fillGroupResponse(id, response);
  }
}

Json::Value CQueryHandlerUploadManager::dequeueFiles(const Json::Value& parameters) {
  return changeFiles(parameters, &CUploadManager::dequeueFile, "Removing", "from");
}

Json::Value CQueryHandlerUploadManager::markQueue(const Json::Value& parameters) {
  return changeGroup(parameters, &CUploadManager::markQueue, "Marked");
}

Json::Value CQueryHandlerUploadManager::unmarkQueue(const Json::Value& parameters) {
  return changeGroup(parameters, &CUploadManager::unmarkQueue, "Unmarked");
}

}  // namespace zantrio
