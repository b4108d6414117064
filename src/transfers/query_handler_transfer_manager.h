#pragma once

#include <Poco/SharedPtr.h>
#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/log/logger.h"
#include "bridge/app_lifecycle_events_handler.h"
#include "bridge/query_handler_base.h"
#include "bridge/query_handler_context.h"
#include "transfers/transfer_json.h"

namespace zantrio {

// The methods that the upload and the download bridge share. The derived classes add the methods,
// texts and responses in which they differ.
//
// A method that is called before setHandlerData throws Poco::NullPointerException, which the page
// receives as a failure.
template <class Manager>
class CQueryHandlerTransferManager : public CQueryHandlerBase, public IAppLifecycleEventsHandler {
 public:
  // Keeps the manager.
  void setHandlerData(const QueryHandlerContext& context) override {
    CQueryHandlerBase::setHandlerData(context);
    manager_ = context.*profile_.manager;
  }

  // Kind 2: this object's IAppLifecycleEventsHandler.
  Poco::Any getHandlerData(int kind) override {
    if (kind == kAppLifecycleEventsHandler) {
      return static_cast<IAppLifecycleEventsHandler*>(this);
    }
    return CQueryHandlerBase::getHandlerData(kind);
  }

  void appStarted() override {
    logInformation(profile_.startingUp);
    manager_->startup();
  }

  void appExiting() override {
    logInformation(profile_.shuttingDown);
    manager_->shutdown();
  }

 protected:
  // The differences between the bridges.
  struct Profile {
    Poco::SharedPtr<Manager> QueryHandlerContext::*manager;
    const char* logPrefix;
    const char* startingUp;
    const char* shuttingDown;
    Json::Value changedGroup;  // the response once a group was paused, resumed or cancelled
  };

  // The first parameters of createGroup in both bridges.
  struct GroupRequest {
    std::string bucketId;
    std::string bucketType;
    std::string token;
    std::uint64_t tokenExpires = 0;  // seconds since 1970; 0: never
  };

  static constexpr std::int32_t kNoGroup = -1;

  explicit CQueryHandlerTransferManager(Profile profile) : profile_(std::move(profile)) {
    registerMethod("getConfiguration", &CQueryHandlerTransferManager::getConfiguration);
    registerMethod("setConfiguration", &CQueryHandlerTransferManager::setConfiguration);
    registerMethod("fetchGroupsState", &CQueryHandlerTransferManager::fetchGroupsState);
    registerMethod("createGroup", &CQueryHandlerTransferManager::createGroup);
    registerMethod("queueFiles", &CQueryHandlerTransferManager::queueFiles);
    registerMethod("pauseGroup", &CQueryHandlerTransferManager::pauseGroup);
    registerMethod("resumeGroup", &CQueryHandlerTransferManager::resumeGroup);
    registerMethod("cancelGroup", &CQueryHandlerTransferManager::cancelGroup);
  }

  virtual Json::Value getConfiguration(const Json::Value& /*parameters*/) {
    Json::Value response;
    toJson(manager_->getConfiguration(), response);
    return response;
  }

  virtual Json::Value createGroup(const Json::Value& parameters) = 0;

  static GroupRequest readGroupRequest(const Json::Value& parameters) {
    GroupRequest request;
    request.bucketId = parameters.get("bucketId", Json::Value()).asString();
    request.bucketType = parameters.get("bucketType", Json::Value()).asString();
    request.token = parameters.get("token", Json::Value()).asString();
    request.tokenExpires = parameters.get("tokenExpires", Json::Value()).asUInt64();
    return request;
  }

  // The response of createGroup while there is no group.
  static Json::Value emptyGroupResponse() {
    Json::Value response;
    response["id"] = Json::Value();
    response["state"] = Json::Value();
    return response;
  }

  // The state stays null when the library does not know the group.
  void fillGroupResponse(std::int32_t groupId, Json::Value& response) {
    response["id"] = std::to_string(groupId);
    typename Manager::GroupState state;
    if (manager_->getGroupState(groupId, state) == 0) {
      toJson(state, response["state"]);
    }
  }

  // Hands the list of files to the manager unless the list is rejected. `doing` and `relation`
  // make the log line: "Adding 2 files to the group …".
  template <class File>
  Json::Value changeFiles(const Json::Value& parameters,
                          void (Manager::*change)(std::int32_t, const std::vector<File>&),
                          const char* doing, const char* relation) {
    const std::int32_t groupId = groupIdFromJson(parameters);
    std::vector<File> files;
    const bool accepted = filesFromJson(parameters.get("files", Json::Value()), files);
    logInformation(profile_.logPrefix, doing, " ", files.size(), " files ", relation,
                   " the group with id ", groupId);
    if (accepted) {
      ((*manager_).*change)(groupId, files);
    }
    return Json::Value(Json::objectValue);
  }

  // `done` begins the log text: "Paused group …".
  Json::Value changeGroup(const Json::Value& parameters, void (Manager::*change)(std::int32_t),
                          const char* done) {
    const std::int32_t groupId = groupIdFromJson(parameters);
    ((*manager_).*change)(groupId);
    logInformation(profile_.logPrefix, done, " group with id: ", groupId);
    return profile_.changedGroup;
  }

  Poco::SharedPtr<Manager> manager_;

 private:
  Json::Value setConfiguration(const Json::Value& parameters) {
    typename Manager::Configuration configuration = manager_->getConfiguration();
    fromJson(parameters, configuration);
    manager_->setConfiguration(configuration);
    return getConfiguration(parameters);
  }

  Json::Value fetchGroupsState(const Json::Value& /*parameters*/) {
    std::vector<typename Manager::GroupState> groups;
    manager_->fetchGroupsInfo(groups);
    Json::Value response(Json::arrayValue);
    for (const auto& group : groups) {
      toJson(group, response.append(Json::Value()));
    }
    return response;
  }

  Json::Value queueFiles(const Json::Value& parameters) {
    return changeFiles(parameters, &Manager::queueFiles, "Adding", "to");
  }

  Json::Value pauseGroup(const Json::Value& parameters) {
    return changeGroup(parameters, &Manager::pauseGroup, "Paused");
  }

  Json::Value resumeGroup(const Json::Value& parameters) {
    return changeGroup(parameters, &Manager::resumeGroup, "Resumed");
  }

  Json::Value cancelGroup(const Json::Value& parameters) {
    return changeGroup(parameters, &Manager::cancelGroup, "Canceled");
  }

  const Profile profile_;
};

}  // namespace zantrio
