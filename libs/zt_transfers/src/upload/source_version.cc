#include "upload/source_version.h"

#include <cerrno>
#include <system_error>

#include "base/file_status.h"
#include "engine/fault_table.h"

namespace zt_transfers {
namespace {

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

bool hasFolder(const std::string& path) {
  struct stat status {};
  return ::stat(path.substr(0, path.rfind('/') + 1).c_str(), &status) == 0;
}

}  // namespace

SourceVersion versionOf(const struct stat& status) {
  SourceVersion version;
  version.device = static_cast<std::uint64_t>(status.st_dev);
  version.inode = static_cast<std::uint64_t>(status.st_ino);
  version.size = static_cast<std::uint64_t>(status.st_size);
  version.modified = nanoseconds(contentChangeOf(status));
  version.touched = nanoseconds(lastChangeOf(status));
  return version;
}

AttemptOutcome outcomeOfSource(int error, const std::string& path, const std::string& doing) {
  const std::string reason = doing + ": " + std::generic_category().message(error);
  if ((error == ENOENT || error == ENOTDIR) && !hasFolder(path)) {
    AttemptOutcome outcome = outcomeOfMissingFolder(FileRole::kSource, reason);
    outcome.scope = AttemptOutcome::Scope::kFile;  // the group's other files may lie elsewhere
    return outcome;
  }
  return outcomeOfErrno(error, FileRole::kSource, reason);
}

std::optional<AttemptOutcome> changeSince(const SourceVersion& version, const std::string& path) {
  struct stat now {};
  if (::stat(path.c_str(), &now) != 0) {
    AttemptOutcome outcome = outcomeOfSource(errno, path, "the file vanished while it was sent");
    if (outcome.kind == AttemptOutcome::Kind::kFinal) {
      outcome.code = failure::kSourceChanged;
    }
    return outcome;
  }
  if (!version.sameContent(versionOf(now))) {
    return AttemptOutcome::final("the file changed while it was sent", failure::kSourceChanged);
  }
  return std::nullopt;
}

}  // namespace zt_transfers
