#include "devservice/progress_reports.h"

#include "devservice/json_request.h"

namespace zantrio::devservice {
namespace {

constexpr Json::ArrayIndex kMostFailures = 100;
constexpr std::size_t kLongestText = 500;  // bytes

std::string shortTextOf(const Json::Value& object, const char* key) {
  std::string text = textOf(object, key);
  if (text.size() > kLongestText) {
    refuse(std::string("\"") + key + "\" is too long.");
  }
  return text;
}

// A reason: `code` for programs, `reason` for people.
Json::Value reasonOf(const Json::Value& given) {
  if (!given.isObject()) {
    refuse("Every reason must be an object.");
  }
  Json::Value reason;
  reason["code"] = shortTextOf(given, "code");
  reason["reason"] = shortTextOf(given, "reason");
  return reason;
}

Json::Value failuresOf(const Json::Value& report) {
  Json::Value failures(Json::arrayValue);
  const Json::Value& given = report["failures"];
  if (!given.isNull() && (!given.isArray() || given.size() > kMostFailures)) {
    refuse("\"failures\" must be an array of at most " + std::to_string(kMostFailures) + ".");
  }
  for (const Json::Value& one : given) {
    Json::Value failure = reasonOf(one);
    failure["fileId"] = shortTextOf(one, "fileId");
    failures.append(std::move(failure));
  }
  return failures;
}

Json::Value takenOf(const Json::Value& report) {
  Json::Value taken;
  for (const char* key :
       {"bytesTransferred", "bytesTotal", "bytesTransferredPerSecond", "filesFailed"}) {
    taken[key] = Json::UInt64(numberOf(report, key, 0));
  }
  taken["group"] = shortTextOf(report, "group");
  taken["state"] = shortTextOf(report, "state");
  taken["waitingFor"] =
      report["waitingFor"].isNull() ? Json::Value() : reasonOf(report["waitingFor"]);
  taken["failures"] = failuresOf(report);
  return taken;
}

}  // namespace

void CProgressReports::take(const std::string& bucketId, const Json::Value& report) {
  const std::string direction = textOf(report, "direction");
  if (direction != "upload" && direction != "download") {
    refuse("\"direction\" must be \"upload\" or \"download\".");
  }
  Json::Value taken = takenOf(report);
  const std::string group = taken["group"].asString();
  const std::lock_guard lock(mutex_);
  Direction& known = last_[{bucketId, direction}];
  Json::Value& last = known.groups[group];
  taken["reports"] = last["reports"].asUInt() + 1;
  last = std::move(taken);
  known.newest = group;
}

Json::Value CProgressReports::describe(const std::string& bucketId,
                                       const std::string& group) const {
  const std::lock_guard lock(mutex_);
  Json::Value json(Json::objectValue);
  for (const char* direction : {"upload", "download"}) {
    const auto known = last_.find({bucketId, direction});
    if (known == last_.end()) {
      continue;
    }
    const auto& [groups, newest] = known->second;
    if (const auto last = groups.find(group.empty() ? newest : group); last != groups.end()) {
      json[direction] = last->second;
    }
  }
  return json;
}

}  // namespace zantrio::devservice
