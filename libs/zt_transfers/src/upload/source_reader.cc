#include "upload/source_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace zt_transfers {
namespace {

std::string errorText(int error) {
  return std::generic_category().message(error);
}

timespec modificationTime(const struct stat& status) {
#if defined(__APPLE__)
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

bool sameVersion(const struct stat& left, const struct stat& right) {
  const timespec leftTime = modificationTime(left);
  const timespec rightTime = modificationTime(right);
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino &&
         left.st_size == right.st_size && leftTime.tv_sec == rightTime.tv_sec &&
         leftTime.tv_nsec == rightTime.tv_nsec;
}

}  // namespace

std::optional<std::string> CSourceReader::open() {
  // Not to hang on a pipe that bears the name; regular files do not care.
  file_ = CUniqueFd(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file_.valid()) {
    return "cannot open the file: " + errorText(errno);
  }
  if (::fstat(file_.get(), &opened_) != 0) {
    return "cannot read the file's status: " + errorText(errno);
  }
  if (!S_ISREG(opened_.st_mode)) {
    return "it is not a regular file";
  }
  size_ = static_cast<std::uint64_t>(opened_.st_size);
  if (wantsHash_) {
    md5_.emplace();
  }
#if defined(POSIX_FADV_SEQUENTIAL)
  if (size_ > kChunk) {
    ::posix_fadvise(file_.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  }
#endif
  return std::nullopt;
}

std::optional<std::string> CSourceReader::readNext(SourceChunk& chunk) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, size_ - offset_));
  chunk.data.reset(new char[std::max<std::size_t>(wanted, 1)]);
  chunk.size = 0;
  while (chunk.size < wanted) {
    const ssize_t got = ::pread(file_.get(), chunk.data.get() + chunk.size, wanted - chunk.size,
                                static_cast<off_t>(offset_ + chunk.size));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      return "cannot read the file: " + errorText(errno);
    }
    if (got == 0) {
      return "the file became shorter while it was sent";
    }
    chunk.size += static_cast<std::size_t>(got);
  }
  offset_ += chunk.size;
  if (md5_) {
    md5_->add(chunk.data.get(), chunk.size);
  }
  chunk.last = offset_ == size_;
  if (!chunk.last) {
    return std::nullopt;
  }
  if (md5_) {
    chunk.md5 = md5_->finish();
  }
  return changedSinceOpen();
}

std::optional<std::string> CSourceReader::changedSinceOpen() const {
  struct stat now {};
  if (::stat(path_.c_str(), &now) != 0) {
    return "the file vanished while it was sent: " + errorText(errno);
  }
  if (!sameVersion(opened_, now)) {
    return "the file changed while it was sent";
  }
  return std::nullopt;
}

}  // namespace zt_transfers
