#pragma once

#include <json/value.h>

#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// From the transfer library's records to the JSON that the page knows. Members are added to
// `json`; a null value becomes an object. Answers and events use the same forms. Thread: any.
void toJson(const zt_transfers::CDownloadManager::GroupState& group, Json::Value& json);
void toJson(const zt_transfers::CUploadManager::GroupState& group, Json::Value& json);
void toJson(const zt_transfers::FileState& file, Json::Value& json);
void toJson(const zt_transfers::CTransferManagerBase::Configuration& configuration,
            Json::Value& json);
void toJson(const zt_transfers::CUploadManager::Configuration& configuration, Json::Value& json);

// The object that tells of a group's change: the group's JSON with its main members once more
// around it.
template <class GroupState>
Json::Value groupEventToJson(const GroupState& group) {
  Json::Value state;
  toJson(group, state);
  Json::Value event;
  event["id"] = state["id"];
  event["bucketId"] = state["bucketId"];
  event["type"] = state["type"];
  event["state"] = std::move(state);
  return event;
}

}  // namespace zantrio
