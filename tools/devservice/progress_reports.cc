#include "devservice/progress_reports.h"

#include "devservice/json_request.h"

namespace zantrio::devservice {

void CProgressReports::take(const std::string& bucketId, const Json::Value& report) {
  const std::string direction = textOf(report, "direction");
  if (direction != "upload" && direction != "download") {
    refuse("\"direction\" must be \"upload\" or \"download\".");
  }
  Json::Value taken;
  for (const char* key : {"bytesTransferred", "bytesTotal", "bytesTransferredPerSecond"}) {
    taken[key] = Json::UInt64(numberOf(report, key, 0));
  }
  taken["state"] = textOf(report, "state");
  const std::lock_guard lock(mutex_);
  Json::Value& last = last_[{bucketId, direction}];
  taken["reports"] = last["reports"].asUInt() + 1;
  last = std::move(taken);
}

Json::Value CProgressReports::describe(const std::string& bucketId) const {
  const std::lock_guard lock(mutex_);
  Json::Value json(Json::objectValue);
  for (const char* direction : {"upload", "download"}) {
    if (const auto last = last_.find({bucketId, direction}); last != last_.end()) {
      json[direction] = last->second;
    }
  }
  return json;
}

}  // namespace zantrio::devservice
