#pragma once

#include <json/json.h>

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace zantrio::devservice {

// The clients' last progress reports; in memory only. Thread: any.
class CProgressReports {
 public:
  // Stores a report; throws CHttpError (400) for an invalid one.
  void add(const std::string& bucketId, const Json::Value& report);
  // The last report of each direction with the number of reports; with a `group`, of that group of
  // the client's.
  Json::Value describe(const std::string& bucketId, const std::string& group = "") const;

 private:
  struct Direction {
    std::map<std::string, Json::Value> groups;
    std::string newest;  // group
  };

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::map<std::pair<std::string, std::string>, Direction> last_;  // by bucket and direction
};

}  // namespace zantrio::devservice
