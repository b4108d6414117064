#include "reports/report_text.h"

#include <curl/curl.h>
#include <json/json.h>

#include <memory>

namespace zt_transfers {
namespace {

const char* nameOf(std::int32_t state) {
  switch (state) {
    case kGroupTransferring:
      return "TRANSFERRING";
    case kGroupErrored:
      return "ERRORED";
    case kGroupCompleted:
      return "COMPLETED";
    case kGroupPaused:
      return "PAUSED";
    default:
      return "IDLE";
  }
}

Json::Value jsonOf(const Failure& failure) {
  Json::Value json;
  json["code"] = failure.code;
  json["reason"] = failure.reason;
  return json;
}

}  // namespace

std::string reportText(const std::string& direction, const CTransferEngine::GroupReport& report) {
  const GroupSnapshot& shot = report.shot;
  Json::Value json;
  json["direction"] = direction;
  json["group"] = std::to_string(shot.id);
  json["state"] = nameOf(shot.state);
  json["bytesTransferred"] = Json::UInt64(shot.bytesTransferred);
  json["bytesTotal"] = Json::UInt64(shot.bytesTotal);
  json["bytesTransferredPerSecond"] = Json::UInt64(shot.bytesTransferredPerSecond);
  if (report.waitingFor) {
    json["waitingFor"] = jsonOf(*report.waitingFor);
  }
  json["filesFailed"] = report.filesFailed;
  json["failures"] = Json::arrayValue;
  for (const auto& [fileId, failure] : report.failures) {
    Json::Value one = jsonOf(failure);
    one["fileId"] = fileId;
    json["failures"].append(std::move(one));
  }
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, json);
}

std::string reportUrl(const std::string& restEndPoint, const std::string& bucketId) {
  if (restEndPoint.empty() || bucketId.empty()) {
    return {};
  }
  const std::unique_ptr<char, decltype(&curl_free)> escaped(
      curl_easy_escape(nullptr, bucketId.data(), static_cast<int>(bucketId.size())), &curl_free);
  const bool slash = restEndPoint.back() == '/';
  return restEndPoint + (slash ? "" : "/") + "api/messages/" + escaped.get() + "/progress";
}

}  // namespace zt_transfers
