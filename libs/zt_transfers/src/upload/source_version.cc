#include "upload/source_version.h"

#include <cerrno>
#include <system_error>

namespace zt_transfers {
namespace {

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

SourceVersion versionOf(const struct stat& status) {
  SourceVersion version;
  version.device = static_cast<std::uint64_t>(status.st_dev);
  version.inode = static_cast<std::uint64_t>(status.st_ino);
  version.size = static_cast<std::uint64_t>(status.st_size);
#if defined(__APPLE__)
  version.modified = nanoseconds(status.st_mtimespec);
  version.touched = nanoseconds(status.st_ctimespec);
#else
  version.modified = nanoseconds(status.st_mtim);
  version.touched = nanoseconds(status.st_ctim);
#endif
  return version;
}

std::optional<Problem> changeSince(const SourceVersion& version, const std::string& path) {
  struct stat now {};
  if (::stat(path.c_str(), &now) != 0) {
    return Problem{failure::kSourceChanged, "the file vanished while it was sent: " +
                                                std::generic_category().message(errno)};
  }
  if (!version.sameContent(versionOf(now))) {
    return Problem{failure::kSourceChanged, "the file changed while it was sent"};
  }
  return std::nullopt;
}

}  // namespace zt_transfers
