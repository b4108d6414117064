#pragma once

#include <Poco/SharedPtr.h>
#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/log/logger.h"
#include "bridge/app_lifecycle_events_handler.h"
#include "bridge/query_handler_base.h"
#include "transfers/json_record.h"
#include "transfers/record_json.h"

namespace zantrio {

// What the bridges of the upload and the download manager have in common. The derived classes keep
// the names, the texts and the answers in which the two differ.
//
// A method that is called before the manager was handed over throws Poco::NullPointerException,
// which the page gets as a failure.
template <class Manager>
class CQueryHandlerTransferManager : public CQueryHandlerBase, public IAppLifecycleEventsHandler {
 public:
  // Kind 2: this object's IAppLifecycleEventsHandler.
  Poco::Any getHandlerData(int kind) override {
    if (kind == kAppLifecycleEventsHandler) {
      return static_cast<IAppLifecycleEventsHandler*>(this);
    }
    return CQueryHandlerBase::getHandlerData(kind);
  }

 protected:
  // What createGroup of either manager takes first.
  struct GroupRequest {
    std::string bucketId;
    std::string bucketType;
    std::string token;
    std::uint64_t tokenExpires = 0;  // seconds since 1970; 0: never
  };

  static constexpr std::int32_t kNoGroup = -1;

  // `name` begins the log's lines.
  explicit CQueryHandlerTransferManager(const char* name) : logPrefix_(name + std::string(": ")) {}

  Json::Value fetchGroupsState(const Json::Value& /*parameters*/) {
    std::vector<typename Manager::GroupState> groups;
    manager_->fetchGroupsInfo(groups);
    Json::Value answer(Json::arrayValue);
    for (const auto& group : groups) {
      toJson(group, answer.append(Json::Value()));
    }
    return answer;
  }

  // Changes what is given and leaves the rest of the configuration.
  void changeConfiguration(const Json::Value& parameters) {
    typename Manager::Configuration configuration = manager_->getConfiguration();
    fromJson(parameters, configuration);
    manager_->setConfiguration(configuration);
  }

  static GroupRequest readGroupRequest(const Json::Value& parameters) {
    GroupRequest request;
    request.bucketId = parameters.get("bucketId", Json::Value()).asString();
    request.bucketType = parameters.get("bucketType", Json::Value()).asString();
    request.token = parameters.get("token", Json::Value()).asString();
    request.tokenExpires = parameters.get("tokenExpires", Json::Value()).asUInt64();
    return request;
  }

  static Json::Value emptyGroupAnswer() {
    Json::Value answer;
    answer["id"] = Json::Value();
    answer["state"] = Json::Value();
    return answer;
  }

  // The state stays null when the library does not know the group.
  void fillGroupAnswer(std::int32_t groupId, Json::Value& answer) {
    answer["id"] = std::to_string(groupId);
    typename Manager::GroupState state;
    if (manager_->getGroupState(groupId, state) == 0) {
      toJson(state, answer["state"]);
    }
  }

  // Hands the list of files to the manager, unless it is rejected. `doing` and `relation` make the
  // log's line: "Adding 2 files to the group …".
  template <class File>
  void changeFiles(const Json::Value& parameters,
                   void (Manager::*change)(std::int32_t, const std::vector<File>&),
                   const char* doing, const char* relation) {
    const std::int32_t groupId = groupIdFromJson(parameters);
    std::vector<File> files;
    const bool accepted = filesFromJson(parameters.get("files", Json::Value()), files);
    logInformation(logPrefix_, doing, " ", files.size(), " files ", relation, " the group with id ",
                   groupId);
    if (accepted) {
      ((*manager_).*change)(groupId, files);
    }
  }

  // `done` begins the log's text: "Paused group …".
  void changeGroup(const Json::Value& parameters, void (Manager::*change)(std::int32_t),
                   const char* done) {
    const std::int32_t groupId = groupIdFromJson(parameters);
    ((*manager_).*change)(groupId);
    logInformation(logPrefix_, done, " group with id: ", groupId);
  }

  Poco::SharedPtr<Manager> manager_;

 private:
  const std::string logPrefix_;
};

}  // namespace zantrio
