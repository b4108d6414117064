// Status and URLs of files.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

#include "files/file_status.h"
#include "files/file_url.h"
#include "files/percent_encoding.h"

namespace zantrio {
namespace {

FileStatus::Kind kindOf(const struct statx& data) {
  if (S_ISREG(data.stx_mode)) {
    return FileStatus::Kind::kRegularFile;
  }
  return S_ISDIR(data.stx_mode) ? FileStatus::Kind::kDirectory : FileStatus::Kind::kOther;
}

std::int64_t microsecondsOf(const statx_timestamp& time) {
  return toMicroseconds(time.tv_sec, time.tv_nsec);
}

}  // namespace

int readFileStatus(const std::string& path, FileStatus& status) {
  return readFileStatus(AT_FDCWD, path, status);
}

int readFileStatus(int folder, const std::string& name, FileStatus& status) {
  struct statx data {};
  if (statx(folder, name.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &data) != 0) {
    return errno;
  }
  status.kind = kindOf(data);
  status.identity = {makedev(data.stx_dev_major, data.stx_dev_minor), data.stx_ino};
  status.size = data.stx_size;
  status.modifiedMicros = microsecondsOf(data.stx_mtime);
  const bool hasBirthTime = (data.stx_mask & STATX_BTIME) != 0;
  status.createdMicros = microsecondsOf(hasBirthTime ? data.stx_btime : data.stx_ctime);
  return 0;
}

void filePathToUrl(const std::string& path, std::string& url) {
  FileStatus status;
  filePathToUrl(path, readFileStatus(path, status) == 0 && status.isDirectory(), url);
}

void filePathToUrl(const std::string& path, bool isDirectory, std::string& url) {
  url = "file://";
  appendPercentEncodedPath(path, url);
  if (isDirectory && !path.ends_with('/')) {
    url += '/';
  }
}

}  // namespace zantrio
