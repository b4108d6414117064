#include "transfers/transfer_json.h"

#include <cstdint>
#include <exception>
#include <sstream>
#include <string>

#include "app/log/logger.h"

namespace zantrio {
namespace {

constexpr const char* kTransferring = "TRANSFERRING";
constexpr const char* kErrored = "ERRORED";
constexpr const char* kCompleted = "COMPLETED";
constexpr const char* kPaused = "PAUSED";
constexpr const char* kUnknown = "UNKNWON";  // the page expects this spelling

// Groups and files number their states differently.
const char* groupStateName(std::int32_t code) {
  switch (code) {
    case 1:
      return kTransferring;
    case 2:
      return kErrored;
    case 3:
      return kCompleted;
    case 4:
      return kPaused;
    default:
      return kUnknown;
  }
}

const char* fileStateName(std::int32_t code) {
  switch (code) {
    case 0:
      return kTransferring;
    case 1:
      return kCompleted;
    case 2:
      return kErrored;
    case 3:
      return kPaused;
    default:
      return kUnknown;
  }
}

// jsoncpp has no constructor for every type that std::uint64_t may be.
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

Json::Value member(const Json::Value& json, const char* name) {
  return json.get(name, Json::Value());
}

void readHeaders(const Json::Value& headers, zt_transfers::CUploadManager::FileDesc& file) {
  for (const std::string& name : headers.getMemberNames()) {
    const Json::Value& value = headers[name];
    if (value.isString()) {
      file.headers.emplace_back(name, value.asString());
    }
  }
}

// 0 for a value that is not a count.
std::uint64_t readCountOrZero(const Json::Value& value) {
  try {
    return value.asUInt64();
  } catch (const std::exception&) {
    return 0;
  }
}

void readDownloadDetails(const Json::Value& json,
                         zt_transfers::CDownloadManager::FileDownloadDetails& file) {
  try {
    const Json::Value details = member(json, "downloadDetails");
    file.url = member(details, "url").asString();
    file.expires = member(details, "expires").asUInt64();
  } catch (const std::exception& exception) {
    logError("Exception caught when trying to obtain download url from json: ", exception.what());
  }
}

}  // namespace

std::wstring widenBytes(const std::string& text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char byte : text) {
    wide.push_back(static_cast<signed char>(byte));
  }
  return wide;
}

std::string narrowToBytes(const std::wstring& text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (const wchar_t character : text) {
    narrow.push_back(static_cast<char>(character & 0xFF));
  }
  return narrow;
}

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

void fromJson(const Json::Value& json,
              zt_transfers::CTransferManagerBase::Configuration& configuration) {
  if (json.isMember("maxConcurrentTransfers")) {
    configuration.maxConcurrentTransfers = json["maxConcurrentTransfers"].asUInt();
  }
  if (json.isMember("minMultipartSize")) {
    configuration.minMultipartSize = json["minMultipartSize"].asUInt64();
  }
  if (json.isMember("maxTransferRetries")) {
    configuration.maxTransferRetries = json["maxTransferRetries"].asUInt();
  }
  if (json.isMember("verifyUploads")) {
    configuration.verifyUploads = json["verifyUploads"].asBool();
  }
  if (json.isMember("preventSleep")) {
    configuration.preventSleep = json["preventSleep"].asBool();
  }
  if (json.isMember("throttleBytesPerSecond")) {
    configuration.throttleBytesPerSecond = json["throttleBytesPerSecond"].asUInt64();
  }
}

void fromJson(const Json::Value& json, zt_transfers::CUploadManager::Configuration& configuration) {
  fromJson(json, static_cast<zt_transfers::CTransferManagerBase::Configuration&>(configuration));
  if (json.isMember("serverTransferProgressInterval")) {
    // The key only switches this on; the value comes from the throttle.
    configuration.serverTransferProgressInterval = member(json, "throttleBytesPerSecond").asUInt();
  }
}

bool fromJson(const Json::Value& json, zt_transfers::CUploadManager::FileDesc& file) {
  try {
    file.fileId = member(json, "id").asString();
    file.fileURL = widenBytes(member(json, "fileURL").asString());
    const Json::Value details = member(json, "uploadDetails");
    if (!details.isNull()) {
      file.url = member(details, "url").asString();
      readHeaders(member(details, "headers"), file);
    }
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool fromJson(const Json::Value& json, zt_transfers::CDownloadManager::FileDownloadDetails& file) {
  try {
    file.fileId = member(json, "id").asString();
    file.path = widenBytes(member(json, "path").asString());
    file.size = readCountOrZero(member(json, "size"));
    file.modified = readCountOrZero(member(json, "modified"));
    file.md5Digest = member(json, "md5Digest").asString();
    readDownloadDetails(json, file);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

std::int32_t groupIdFromJson(const Json::Value& parameters) {
  std::istringstream text(member(parameters, "groupId").asString());
  std::int32_t id = 0;
  text >> id;
  return id;
}

}  // namespace zantrio
