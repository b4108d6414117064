#include "base/file_ops.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/file_status.h"

namespace zt_transfers {
namespace {

constexpr mode_t kFileMode = 0666;  // less the umask
constexpr mode_t kFolderMode = 0777;

bool diskHasRoom(int file, std::uint64_t size) {
  constexpr std::uint64_t kBlock = 512;  // of st_blocks
  struct stat status {};
  struct statvfs disk {};
  if (::fstat(file, &status) != 0 || ::fstatvfs(file, &disk) != 0 || disk.f_blocks == 0) {
    return true;
  }
  const std::uint64_t has = static_cast<std::uint64_t>(status.st_blocks) * kBlock;
  return size <= has || (size - has) / disk.f_frsize <= disk.f_bavail;
}

// File systems report in several ways that they lack an operation.
bool supported(bool succeeded) {
  if (!succeeded && (errno == EINVAL || errno == ENOSYS || errno == EPERM)) {
    errno = ENOTSUP;
  }
  return succeeded;
}

}  // namespace

struct stat statusOf(IFileOps& ops, int file) {
  struct stat status {};
  if (!ops.status(file, status)) {
    failWithErrno("cannot read the file's status");
  }
  return status;
}

CUniqueFd CPosixFileOps::openFolder(int parent, const char* name, Links links) {
  constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  return CUniqueFd(
      ::openat(parent, name, kOpenFolder | (links == Links::kRefuse ? O_NOFOLLOW : 0)));
}

CUniqueFd CPosixFileOps::open(int folder, const char* name) {
  return CUniqueFd(::openat(folder, name, O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
}

CUniqueFd CPosixFileOps::create(int folder, const char* name) {
  return CUniqueFd(
      ::openat(folder, name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileMode));
}

bool CPosixFileOps::lock(int file) {
  return ::flock(file, LOCK_EX | LOCK_NB) == 0;
}

bool CPosixFileOps::status(int file, struct stat& status) {
  return ::fstat(file, &status) == 0;
}

bool CPosixFileOps::statusOfName(int folder, const char* name, struct stat& status) {
  return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0;
}

ssize_t CPosixFileOps::read(int file, char* data, std::size_t size, std::uint64_t offset) {
  return ::pread(file, data, size, static_cast<off_t>(offset));
}

ssize_t CPosixFileOps::write(int file, const char* data, std::size_t size, std::uint64_t offset) {
  return ::pwrite(file, data, size, static_cast<off_t>(offset));
}

bool CPosixFileOps::truncate(int file) {
  return ::ftruncate(file, 0) == 0;
}

bool CPosixFileOps::reserve(int file, std::uint64_t size) {
  // Checked first so that nothing else runs out of space while the system allocates.
  if (!diskHasRoom(file, size)) {
    errno = ENOSPC;
    return false;
  }
  // Memory would be allocated page by page and would have left the processor's cache when it is
  // written to. That costs a download a fifth of its time.
  if (liesInMemory(file)) {
    return true;
  }
  return allocate(file, size) || (errno != ENOSPC && errno != EDQUOT && errno != EFBIG);
}

bool CPosixFileOps::setTimes(int file, timespec time) {
  const std::array<timespec, 2> times{time, time};
  return ::futimens(file, times.data()) == 0;
}

bool CPosixFileOps::setAttribute(int file, const char* name, std::string_view value) {
#if defined(__linux__)
  return ::fsetxattr(file, name, value.data(), value.size(), 0) == 0;
#else
  static_cast<void>(file);
  static_cast<void>(name);
  static_cast<void>(value);
  errno = ENOTSUP;
  return false;
#endif
}

bool CPosixFileOps::makeFolder(int parent, const char* name) {
  return ::mkdirat(parent, name, kFolderMode) == 0;
}

bool CPosixFileOps::renameWithoutReplacing(int folder, const char* from, const char* to) {
  return supported(renameExclusively(folder, from, to));
}

bool CPosixFileOps::rename(int folder, const char* from, const char* to) {
  return ::renameat(folder, from, folder, to) == 0;
}

bool CPosixFileOps::link(int folder, const char* from, const char* to) {
  return supported(::linkat(folder, from, folder, to, 0) == 0);
}

bool CPosixFileOps::unlink(int folder, const char* name) {
  return ::unlinkat(folder, name, 0) == 0;
}

}  // namespace zt_transfers
