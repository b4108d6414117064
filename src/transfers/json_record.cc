#include "transfers/json_record.h"

#include <cstdint>
#include <exception>
#include <sstream>

#include "app/log/logger.h"
#include "transfers/wide_text.h"

namespace zantrio {
namespace {

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

// 0 for what is not a number.
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
    // The page's interval key only switches this on; the value is the throttle's.
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
