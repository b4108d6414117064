#include "transfers/query_handler_upload_manager.h"

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "app/logger.h"
#include "bridge/query_handler_context.h"
#include "transfers/json_record.h"
#include "transfers/record_json.h"

namespace zantrio {
namespace {

using zt_transfers::CUploadManager;

constexpr std::int32_t kNoGroup = -1;
constexpr const char* kLogPrefix = "QueryHandlerUploadManager: ";

Json::Value emptyObject() {
  return Json::Value(Json::objectValue);
}

}  // namespace

CQueryHandlerUploadManager::CQueryHandlerUploadManager() {
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

Poco::Any CQueryHandlerUploadManager::getHandlerData(int kind) {
  if (kind == kAppLifecycleEventsHandler) {
    return static_cast<IAppLifecycleEventsHandler*>(this);
  }
  return CQueryHandlerBase::getHandlerData(kind);
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
  CUploadManager::Configuration configuration = manager_->getConfiguration();
  fromJson(parameters, configuration);
  manager_->setConfiguration(configuration);
  return getConfiguration(parameters);
}

Json::Value CQueryHandlerUploadManager::fetchGroupsState(const Json::Value& /*parameters*/) {
  std::vector<CUploadManager::GroupState> groups;
  manager_->fetchGroupsInfo(groups);
  Json::Value answer(Json::arrayValue);
  for (const CUploadManager::GroupState& group : groups) {
    toJson(group, answer.append(Json::Value()));
  }
  return answer;
}

Json::Value CQueryHandlerUploadManager::createGroup(const Json::Value& parameters) {
  Json::Value answer;
  answer["id"] = Json::Value();
  answer["state"] = Json::Value();
  try {
    fillCreatedGroup(parameters, answer);
  } catch (const std::exception& exception) {
    logError("createGroup", ": Exception: ", exception.what());
  }
  return answer;
}

void CQueryHandlerUploadManager::fillCreatedGroup(const Json::Value& parameters,
                                                  Json::Value& answer) {
  const std::string bucketId = parameters.get("bucketId", Json::Value()).asString();
  const std::string bucketType = parameters.get("bucketType", Json::Value()).asString();
  const std::string token = parameters.get("token", Json::Value()).asString();
  const std::uint64_t tokenExpires = parameters.get("tokenExpires", Json::Value()).asUInt64();
  logInformation("Creating upload group. Bucket id: ", bucketId, ", bucket type: ", bucketType,
                 ", token: ", token, ", token expires: ", tokenExpires);
  const std::int32_t id = manager_->createGroup(bucketId, bucketType, token, tokenExpires);
  if (id == kNoGroup) {
    return;
  }
  answer["id"] = std::to_string(id);
  CUploadManager::GroupState state;
  if (manager_->getGroupState(id, state) == 0) {
    toJson(state, answer["state"]);
  }
}

Json::Value CQueryHandlerUploadManager::queueFiles(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  std::vector<CUploadManager::FileDesc> files;
  const bool accepted = filesFromJson(parameters.get("files", Json::Value()), files);
  logInformation(kLogPrefix, "Adding ", files.size(), " files to the group with id ", groupId);
  if (accepted) {
    manager_->queueFiles(groupId, files);
  }
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::markQueue(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  manager_->markQueue(groupId);
  logInformation(kLogPrefix, "Marked group with id: ", groupId);
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::dequeueFiles(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  std::vector<CUploadManager::FileDesc> files;
  const bool accepted = filesFromJson(parameters.get("files", Json::Value()), files);
  logInformation(kLogPrefix, "Removing ", files.size(), " files from the group with id ", groupId);
  if (accepted) {
    manager_->dequeueFile(groupId, files);
  }
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::unmarkQueue(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  manager_->unmarkQueue(groupId);
  logInformation(kLogPrefix, "Unmarked group with id: ", groupId);
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::pauseGroup(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  manager_->pauseGroup(groupId);
  logInformation(kLogPrefix, "Paused group with id: ", groupId);
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::resumeGroup(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  manager_->resumeGroup(groupId);
  logInformation(kLogPrefix, "Resumed group with id: ", groupId);
  return emptyObject();
}

Json::Value CQueryHandlerUploadManager::cancelGroup(const Json::Value& parameters) {
  const std::int32_t groupId = groupIdFromJson(parameters);
  manager_->cancelGroup(groupId);
  logInformation(kLogPrefix, "Canceled group with id: ", groupId);
  return emptyObject();
}

}  // namespace zantrio
