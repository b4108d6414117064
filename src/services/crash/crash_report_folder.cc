#include "services/crash/crash_report_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace zantrio {
namespace fs = std::filesystem;
namespace {

using Clock = std::chrono::system_clock;

[[noreturn]] void fail(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

// As in "2024-03-01T17-05-09.123Z.txt".
std::string reportName(Clock::time_point time) {
  const auto sinceEpoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
  const time_t seconds = static_cast<time_t>(sinceEpoch / 1000);
  tm utc{};
  gmtime_r(&seconds, &utc);
  char date[64];
  const std::size_t length = std::strftime(date, sizeof date, "%Y-%m-%dT%H-%M-%S", &utc);
  char name[96];
  std::snprintf(name, sizeof name, "%.*s.%03dZ.txt", static_cast<int>(length), date,
                static_cast<int>(sinceEpoch % 1000));
  return name;
}

bool isReportName(std::string_view name) {
  constexpr std::string_view kPattern = "0000-00-00T00-00-00.000Z.txt";
  const auto fits = [](char character, char pattern) {
    return pattern == '0' ? character >= '0' && character <= '9' : character == pattern;
  };
  return name.size() == kPattern.size() &&
         std::equal(name.begin(), name.end(), kPattern.begin(), fits);
}

}  // namespace

CrashReportFolder::CrashReportFolder(const std::string& appDataFolder)
    : folder_(appDataFolder + "Crash Reports/") {}

int CrashReportFolder::createReport() const {
  if (mkdir(folder_.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    fail(folder_);
  }
  if (chmod(folder_.c_str(), S_IRWXU) != 0) {
    fail(folder_);
  }
  // Two crashes may happen at the same time.
  for (auto time = Clock::now();; time += std::chrono::milliseconds(1)) {
    const std::string path = folder_ + reportName(time);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file >= 0) {
      return file;
    }
    if (errno != EEXIST) {
      fail(path);
    }
  }
}

void CrashReportFolder::keepNewest(std::size_t count) const {
  const std::vector<std::string> all = reports();
  for (std::size_t i = 0; i + count < all.size(); ++i) {
    unlink(all[i].c_str());
  }
}

std::vector<std::string> CrashReportFolder::writtenAfter(const std::string& path) const {
  std::vector<std::string> found = reports();
  std::error_code error;
  const auto limit = fs::last_write_time(path, error);
  if (!error) {
    std::erase_if(found, [&](const std::string& report) {
      return fs::last_write_time(report, error) <= limit;
    });
  }
  return found;
}

std::vector<std::string> CrashReportFolder::reports() const {
  std::vector<std::string> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder_, error), end; !error && entry != end;
       entry.increment(error)) {
    if (isReportName(entry->path().filename().native())) {
      found.push_back(entry->path());
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace zantrio
