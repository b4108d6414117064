#include "transfers/record_json.h"

#include <string>

#include "transfers/state_names.h"

namespace zantrio {
namespace {

// Keeps 64-bit counts unsigned whatever the platform's idea of std::uint64_t.
Json::Value count(std::uint64_t value) {
  return static_cast<Json::UInt64>(value);
}

void addCommonMembers(const zt_transfers::GroupStateBase& group, Json::Value& json) {
  json["id"] = std::to_string(group.id);
  json["type"] = groupStateName(group.state);
  json["bucketId"] = group.bucketId;
  json["bucketType"] = group.bucketType;
  json["paused"] = group.paused;
  json["empty"] = group.empty;
  json["bytesTransferred"] = count(group.bytesTransferred);
  json["bytesTotal"] = count(group.bytesTotal);
  json["percentTransferred"] = static_cast<double>(group.percentTransferred);
  json["bytesTransferredPerSecond"] = count(group.bytesTransferredPerSecond);
  json["estimatedEta"] = count(group.estimatedEta);
  json["cancelled"] = group.cancelled;
}

}  // namespace

void toJson(const zt_transfers::CDownloadManager::GroupState& group, Json::Value& json) {
  addCommonMembers(group, json);
}

void toJson(const zt_transfers::CUploadManager::GroupState& group, Json::Value& json) {
  addCommonMembers(group, json);
  json["marked"] = group.marked;
}

void toJson(const zt_transfers::FileState& file, Json::Value& json) {
  const char* const stateName = fileStateName(file.state);
  json["id"] = std::to_string(file.groupId);
  json["bucketId"] = file.bucketId;
  json["fileId"] = file.fileId;
  json["type"] = stateName;
  Json::Value& state = json["state"];
  state["type"] = stateName;
  state["bytesTransfered"] = count(file.bytesTransferred);  // the page reads this spelling here
  state["bytesTotal"] = count(file.bytesTotal);
  state["percentTransferred"] = static_cast<double>(file.percentTransferred);
}

void toJson(const zt_transfers::CTransferManagerBase::Configuration& configuration,
            Json::Value& json) {
  json["maxConcurrentTransfers"] = configuration.maxConcurrentTransfers;
  json["minMultipartSize"] = count(configuration.minMultipartSize);
  json["maxTransferRetries"] = configuration.maxTransferRetries;
  json["verifyUploads"] = configuration.verifyUploads;
  json["preventSleep"] = configuration.preventSleep;
  json["throttleBytesPerSecond"] = count(configuration.throttleBytesPerSecond);
}

void toJson(const zt_transfers::CUploadManager::Configuration& configuration, Json::Value& json) {
  toJson(static_cast<const zt_transfers::CTransferManagerBase::Configuration&>(configuration),
         json);
  json["serverTransferProgressInterval"] = configuration.serverTransferProgressInterval;
}

}  // namespace zantrio
