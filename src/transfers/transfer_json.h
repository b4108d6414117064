#pragma once

#include <json/value.h>

#include <string>
#include <utility>
#include <vector>

#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// Conversions between the transfer library's records and the page's JSON. Answers and events use
// the same forms. Thread: any.

// The transfer library's wide texts carry one byte in each character, sign-extended; nothing is
// decoded. narrowToBytes keeps the low byte of each character.
std::wstring widenBytes(const std::string& text);
std::string narrowToBytes(const std::wstring& text);

// These add members to `json`; a null value becomes an object.
void toJson(const zt_transfers::CDownloadManager::GroupState& group, Json::Value& json);
void toJson(const zt_transfers::CUploadManager::GroupState& group, Json::Value& json);
void toJson(const zt_transfers::FileState& file, Json::Value& json);
void toJson(const zt_transfers::CTransferManagerBase::Configuration& configuration,
            Json::Value& json);
void toJson(const zt_transfers::CUploadManager::Configuration& configuration, Json::Value& json);

// The event object for a changed group: the group's JSON in "state", its main members beside it.
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

// Every member present overwrites its field; the others keep their values. Throws Json::LogicError
// for a member that cannot be converted.
void fromJson(const Json::Value& json,
              zt_transfers::CTransferManagerBase::Configuration& configuration);
void fromJson(const Json::Value& json, zt_transfers::CUploadManager::Configuration& configuration);

// One element of a list of files. False when the element cannot be used.
bool fromJson(const Json::Value& json, zt_transfers::CUploadManager::FileDesc& file);
bool fromJson(const Json::Value& json, zt_transfers::CDownloadManager::FileDownloadDetails& file);

// Puts the list's usable elements into `files`. False when `json` is not an array or is empty.
template <class File>
bool filesFromJson(const Json::Value& json, std::vector<File>& files) {
  if (!json.isArray() || json.empty()) {
    return false;
  }
  files.reserve(json.size());
  for (const Json::Value& element : json) {
    File file;
    if (fromJson(element, file)) {
      files.push_back(std::move(file));
    }
  }
  return true;
}

// The number at the beginning of the text of "groupId"; 0 when there is none.
std::int32_t groupIdFromJson(const Json::Value& parameters);

}  // namespace zantrio
