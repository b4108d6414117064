#include "download/publish.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/unique_fd.h"
#include "download/counted_name.h"

namespace zt_transfers {
namespace {

constexpr unsigned kMaxCounted = 10'000;

bool renameWithoutReplacing(int folder, const char* from, const char* to) {
#if defined(__APPLE__)
  return ::renameatx_np(folder, from, folder, to, RENAME_EXCL) == 0;
#else
  return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0;
#endif
}

bool unsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EPERM;
}

// A second name replaces nothing either.
bool linkAndUnlink(int folder, const char* from, const char* to) {
  if (::linkat(folder, from, folder, to, 0) != 0) {
    return false;
  }
  ::unlinkat(folder, from, 0);  // the file has its name, whatever becomes of the other one
  return true;
}

// The last way, for file systems that offer neither: the name is taken first, by an empty file,
// and only that is replaced.
bool replaceOwnPlaceholder(int folder, const char* from, const char* to) {
  const CUniqueFd placeholder(
      ::openat(folder, to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!placeholder.valid()) {
    return false;
  }
  if (::renameat(folder, from, folder, to) == 0) {
    return true;
  }
  const int error = errno;
  ::unlinkat(folder, to, 0);
  errno = error;
  return false;
}

bool move(int folder, const char* from, const char* to) {
  if (renameWithoutReplacing(folder, from, to)) {
    return true;
  }
  if (unsupported(errno) && linkAndUnlink(folder, from, to)) {
    return true;
  }
  return unsupported(errno) && replaceOwnPlaceholder(folder, from, to);
}

}  // namespace

std::string publish(int folder, const std::string& partial, const std::string& name) {
  for (unsigned count = 0; count <= kMaxCounted; ++count) {
    std::string candidate = countedName(name, count);
    if (move(folder, partial.c_str(), candidate.c_str())) {
      return candidate;
    }
    if (errno != EEXIST) {
      break;
    }
  }
  throw std::system_error(errno, std::generic_category(), "cannot give the file its name");
}

}  // namespace zt_transfers
