#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "zt_transfers/download_manager.h"
#include "zt_transfers/upload_manager.h"

namespace zantrio {

// From the page's JSON to the transfer library's records. Thread: any.

// Every member that is there overwrites its field; the others stay. Throws Json::LogicError for a
// member that cannot be converted.
void fromJson(const Json::Value& json,
              zt_transfers::CTransferManagerBase::Configuration& configuration);
void fromJson(const Json::Value& json, zt_transfers::CUploadManager::Configuration& configuration);

// One element of a list of files. False when the element cannot be used.
bool fromJson(const Json::Value& json, zt_transfers::CUploadManager::FileDesc& file);
bool fromJson(const Json::Value& json, zt_transfers::CDownloadManager::FileDownloadDetails& file);

// Puts the list's usable elements into `files`. False when `json` is not an array or empty.
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

// The group id at the beginning of the text of "groupId"; 0 when there is none.
std::int32_t groupIdFromJson(const Json::Value& parameters);

}  // namespace zantrio
