#pragma once

#include <string>
#include <vector>

namespace zantrio {

// The folder of the crash reports, "Crash Reports" in the application's data folder. Only its owner
// may look into it. A report's name is the time at which it began, in UTC, so that names are in the
// order of their time; files with other names are left alone.
class CrashReportFolder {
 public:
  // `appDataFolder` ends with a slash. The folder need not be there.
  explicit CrashReportFolder(const std::string& appDataFolder);

  // Makes the folder where it is missing, and an empty report in it; gives the report's file
  // descriptor, which the caller closes. Errors: std::system_error.
  int createReport() const;

  // Removes the oldest reports until at most `count` are left. What cannot be removed stays.
  void keepNewest(std::size_t count) const;

  // The paths of the reports that were written after the file at `path` was, oldest first; of all
  // of them when there is no such file.
  std::vector<std::string> writtenAfter(const std::string& path) const;

 private:
  std::vector<std::string> reports() const;

  const std::string folder_;
};

}  // namespace zantrio
