#include "download/publish.h"

#include <cerrno>
#include <system_error>

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

std::string publish(IFileOps& ops, int folder, const std::string& partial,
                    const std::string& name) {
  for (unsigned count = 0; count <= kMaxCounted; ++count) {
    std::string candidate = countedName(name, count);
    if (move(ops, folder, partial.c_str(), candidate.c_str())) {
      return candidate;
    }
    if (errno != EEXIST) {
      break;
    }
  }
  throw std::system_error(errno, std::generic_category(), "cannot give the file its name");
}

}  // namespace zt_transfers
