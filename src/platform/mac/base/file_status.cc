#include "files/file_status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace zantrio {
namespace {

FileStatus::Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) {
    return FileStatus::Kind::kRegularFile;
  }
  return S_ISDIR(mode) ? FileStatus::Kind::kDirectory : FileStatus::Kind::kOther;
}

std::int64_t microsecondsOf(const timespec& time) {
  return toMicroseconds(time.tv_sec, time.tv_nsec);
}

}  // namespace

int readFileStatus(const std::string& path, FileStatus& status) {
  return readFileStatus(AT_FDCWD, path, status);
}

int readFileStatus(int folder, const std::string& name, FileStatus& status) {
  struct stat data {};
  if (fstatat(folder, name.c_str(), &data, 0) != 0) {
    return errno;
  }
  status.kind = kindOf(data.st_mode);
  status.identity = {static_cast<std::uint64_t>(data.st_dev), data.st_ino};
  status.size = static_cast<std::uint64_t>(data.st_size);
  status.modifiedMicros = microsecondsOf(data.st_mtimespec);
  status.createdMicros = microsecondsOf(data.st_birthtimespec);
  return 0;
}

}  // namespace zantrio
