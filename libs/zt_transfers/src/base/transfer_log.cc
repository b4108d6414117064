#include "base/transfer_log.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <map>
#include <system_error>

#include "base/mutex.h"
#include "base/this_thread.h"
#include "shown_text/one_line.h"
#include "shown_text/secrets.h"

namespace zt_transfers {
namespace {

constexpr mode_t kMode = 0600;

const char* nameOf(ILog::Priority priority) {
  switch (priority) {
    case ILog::Priority::kError:
      return "Error";
    case ILog::Priority::kWarning:
      return "Warning";
    default:
      return "Information";
  }
}

std::string timeStamp() {
  timeval now{};
  ::gettimeofday(&now, nullptr);
  tm local{};
  ::localtime_r(&now.tv_sec, &local);
  char date[32];
  const std::size_t length = std::strftime(date, sizeof date, "%m-%d-%y %H:%M:%S", &local);
  char full[40];
  std::snprintf(full, sizeof full, "%.*s:%03d", static_cast<int>(length), date,
                static_cast<int>(now.tv_usec / 1000));
  return full;
}

std::string describeThisThread() {
  char name[32] = "";
  ::pthread_getname_np(::pthread_self(), name, sizeof name);
  return std::to_string(thisThreadId()) + " " + name;
}

// Asked for once a thread, as it takes two system calls. The library's threads have their names
// before they log.
const std::string& threadText() {
  thread_local const std::string text = describeThisThread();
  return text;
}

// One line of it, whatever the message holds.
std::string lineFor(ILog::Priority priority, std::string_view message) {
  std::string line = "[" + timeStamp() + "] [" + threadText() + "] [" + nameOf(priority) + "] ";
  line += shown_text::oneLine(message);
  shown_text::maskSecrets(line);
  line.push_back('\n');
  return line;
}

}  // namespace

std::shared_ptr<CTransferLog> CTransferLog::inFolder(const std::string& folder) {
  static CMutex mutex;
  static std::map<std::string, std::weak_ptr<CTransferLog>> logs;
  const CMutexLock lock(mutex);
  std::shared_ptr<CTransferLog> log = logs[folder].lock();
  if (!log) {
    log = std::make_shared<CTransferLog>(folder + "/zt_transfers.log");
    logs[folder] = log;
  }
  return log;
}

CTransferLog::CTransferLog(const std::string& path, std::uint64_t limit)
    : path_(path), limit_(limit) {
  const CMutexLock lock(mutex_);
  open();
}

void CTransferLog::write(Priority priority, std::string_view message) noexcept {
  try {
    const std::string line = lineFor(priority, message);
    const CMutexLock lock(mutex_);
    if (size_ != 0 && size_ + line.size() > limit_) {
      rotate();
    }
    if (!file_.valid()) {
      return;
    }
    const ssize_t written = ::write(file_.get(), line.data(), line.size());
    if (written < 0) {
      complain(errno);
      return;
    }
    size_ += static_cast<std::uint64_t>(written);
  } catch (const std::exception&) {
    // Out of memory: the message is lost, the transfer that wrote it is not.
  }
}

void CTransferLog::open() {
  file_ = CUniqueFd(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kMode));
  if (!file_.valid()) {
    complain(errno);
    return;
  }
  ::fchmod(file_.get(), kMode);  // whoever made it, with whatever mask
  struct stat status {};
  size_ = ::fstat(file_.get(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

void CTransferLog::rotate() {
  if (::rename(path_.c_str(), (path_ + ".0").c_str()) != 0) {
    complain(errno);
    // Try again after another full measure instead of at every line.
    size_ = 0;
    return;
  }
  open();
}

void CTransferLog::complain(int error) {
  if (complained_) {
    return;
  }
  complained_ = true;
  std::fprintf(stderr, "zt_transfers: cannot write the log %s: %s; transfers go on without it\n",
               path_.c_str(), std::generic_category().message(error).c_str());
}

}  // namespace zt_transfers
