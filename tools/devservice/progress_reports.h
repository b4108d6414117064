#pragma once

#include <json/json.h>

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace zantrio::devservice {

// What clients last reported of their transfers; kept in memory only. Thread: any.
class CProgressReports {
 public:
  // Takes a report; throws CHttpError (400) for one that makes no sense.
  void take(const std::string& bucketId, const Json::Value& report);
  // The last report of each direction, with how many there were.
  Json::Value describe(const std::string& bucketId) const;

 private:
  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::pair<std::string, std::string>, Json::Value> last_;  // by bucket and direction
};

}  // namespace zantrio::devservice
