#include "store/database_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>

namespace zt_transfers {
namespace {

// A name that is not taken yet.
std::string nameAside(const std::string& path) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  char time[32];
  std::strftime(time, sizeof time, "%Y%m%d-%H%M%S", &local);
  std::string name = path + ".unusable-" + time;
  for (int number = 2; std::filesystem::exists(name); ++number) {
    name = path + ".unusable-" + time + "-" + std::to_string(number);
  }
  return name;
}

}  // namespace

bool CDatabaseFile::isNew() const {
  struct stat status {};
  const bool there = ::stat(path_.c_str(), &status) == 0;
  return lock_ && (there ? status.st_size == 0 : errno == ENOENT);
}

bool CDatabaseFile::takeLock() {
  try {
    if (!lock_) {
      lock_ = CDatabaseLock::take(path_ + ".lock");
    }
    if (!lock_) {
      complain("is in use by another process");
    }
  } catch (const std::system_error& error) {
    complain(std::string("cannot be used: ") + error.what());
  }
  return lock_.has_value();
}

void CDatabaseFile::complain(const std::string& problem) {
  if (!std::exchange(complained_, true)) {
    log_.error("The queue " + path_ + " " + problem +
               "; transfers go on, what is queued now stays in memory until it can be written");
  }
}

// The database holds tokens and signed URLs. SQLite gives its other files the same mode.
void CDatabaseFile::makePrivate() const {
  const CUniqueFd file(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
}

std::unique_ptr<CQueueDatabase> CDatabaseFile::open(
    const std::function<void(CQueueDatabase&)>& load) {
  if (!takeLock()) {
    return nullptr;
  }
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      makePrivate();
      auto database = std::make_unique<CQueueDatabase>(path_, patience_);
      load(*database);
      complained_ = false;
      return database;
    } catch (const CQueueDatabase::CUnusable& error) {
      if (!setAside(error.what())) {
        return nullptr;
      }
    } catch (const CSqliteError& error) {
      if (!error.isDamage()) {
        complain(std::string("cannot be opened: ") + error.what());
        return nullptr;
      }
      if (!setAside(error.what())) {
        return nullptr;
      }
    }
  }
  return nullptr;
}

bool CDatabaseFile::setAside(const std::string& reason) {
  const std::string aside = nameAside(path_);
  for (const char* suffix : {"-wal", "-shm", "-journal", ""}) {
    std::error_code error;
    std::filesystem::rename(path_ + suffix, aside + suffix, error);
    if (error && error != std::errc::no_such_file_or_directory) {
      complain("cannot be used (" + reason + ") nor be renamed: " + error.message());
      return false;
    }
  }
  log_.error("The queue " + path_ + " cannot be used (" + reason + "). It was renamed to " + aside +
             ", a new one begins; transfers that were in it have to be started anew");
  return true;
}

}  // namespace zt_transfers
