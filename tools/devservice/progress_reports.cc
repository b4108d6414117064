#include "devservice/progress_reports.h"

#include "devservice/json_request.h"

namespace zantrio::devservice {
namespace {

constexpr Json::ArrayIndex kMaxFailures = 100;
constexpr std::size_t kMaxText = 500;  // bytes

std::string shortTextOf(const Json::Value& object, const char* key) {
  std::string text = textOf(object, key);
  if (text.size() > kMaxText) {
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
  if (!given.isNull() && (!given.isArray() || given.size() > kMaxFailures)) {
    refuse("\"failures\" must be an array of at most " + std::to_string(kMaxFailures) + ".");
  }
  for (const Json::Value& one : given) {
    Json::Value failure = reasonOf(one);
    failure["fileId"] = shortTextOf(one, "fileId");
    failures.append(std::move(failure));
  }
  return failures;
}

Json::Value readReport(const Json::Value& report) {
  Json::Value read;
  for (const char* key :
       {"bytesTransferred", "bytesTotal", "bytesTransferredPerSecond", "filesFailed"}) {
    read[key] = Json::UInt64(numberOf(report, key, 0));
  }
  read["group"] = shortTextOf(report, "group");
  read["state"] = shortTextOf(report, "state");
  read["waitingFor"] =
      report["waitingFor"].isNull() ? Json::Value() : reasonOf(report["waitingFor"]);
  read["failures"] = failuresOf(report);
  return read;
}

}  // namespace

void CProgressReports::add(const std::string& bucketId, const Json::Value& report) {
  const std::string direction = textOf(report, "direction");
  if (direction != "upload" && direction != "download") {
    refuse("\"direction\" must be \"upload\" or \"download\".");
  }
  Json::Value read = readReport(report);
  const std::string group = read["group"].asString();
  const std::lock_guard lock(mutex_);
  Direction& known = last_[{bucketId, direction}];
  Json::Value& last = known.groups[group];
  read["reports"] = last["reports"].asUInt() + 1;
  last = std::move(read);
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
