#include "download/publish.h"

#include <sys/stat.h>

#include <cerrno>

#include "base/system_failure.h"
#include "base/unique_fd.h"
#include "download/target_path.h"

namespace zt_transfers {
namespace {

// A second link does not replace anything either.
bool linkAndUnlink(IFileOps& ops, int folder, const char* from, const char* to) {
  if (!ops.link(folder, from, to)) {
    return false;
  }
  ops.unlink(folder, from);  // the file has its name even if the other one remains
  return true;
}

// For file systems that offer neither: an empty file takes the name first, and only that file is
// replaced.
bool replaceOwnPlaceholder(IFileOps& ops, int folder, const char* from, const char* to) {
  const CUniqueFd placeholder = ops.create(folder, to);
  if (!placeholder.valid()) {
    return false;
  }
  if (ops.rename(folder, from, to)) {
    return true;
  }
  const int error = errno;
  ops.unlink(folder, to);
  errno = error;
  return false;
}

bool move(IFileOps& ops, int folder, const char* from, const char* to) {
  if (ops.renameWithoutReplacing(folder, from, to)) {
    return true;
  }
  if (errno == ENOTSUP && linkAndUnlink(ops, folder, from, to)) {
    return true;
  }
  return errno == ENOTSUP && replaceOwnPlaceholder(ops, folder, from, to);
}

}  // namespace

unsigned freeCount(IFileOps& ops, int folder, const std::string& name, unsigned count) {
  struct stat status {};
  while (count <= kMaxCounted &&
         ops.statusOfName(folder, countedName(name, count).c_str(), status)) {
    ++count;
  }
  if (count > kMaxCounted) {
    errno = EEXIST;
  }
  if (errno != ENOENT) {
    failWithErrno("cannot find a name for the file");
  }
  return count;
}

bool renameIfFree(IFileOps& ops, int folder, const std::string& from, const std::string& to) {
  if (move(ops, folder, from.c_str(), to.c_str())) {
    return true;
  }
  if (errno != EEXIST) {
    failWithErrno("cannot give the file its name");
  }
  return false;
}

}  // namespace zt_transfers
