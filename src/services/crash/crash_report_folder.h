#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The folder of the crash reports, "Crash Reports" in the application's data folder, readable by
// its owner only. A report is named after the time at which it was begun, in UTC, so that names
// sort by time. Files with other names are ignored.
class CrashReportFolder {
 public:
  // `appDataFolder` ends with a slash. The folder need not exist.
  explicit CrashReportFolder(const std::string& appDataFolder);

  // Creates the folder if it is missing, and an empty report in it. Returns the file descriptor of
  // the report, which the caller closes. Errors: std::system_error.
  int createReport() const;

  // Removes the oldest reports until at most `count` are left. Reports that cannot be removed stay.
  void keepNewest(std::size_t count) const;

  // The paths of the reports that were written after the file at `path`, oldest first; of all
  // reports when that file does not exist.
  std::vector<std::string> writtenAfter(const std::string& path) const;

 private:
  std::vector<std::string> reports() const;

  const std::string folder_;
};

}  // namespace zantrio
