#include "download/target_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace zt_transfers {
namespace {

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t kAllThatTheUmaskLeaves = 0777;

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// True when it was made, false when it was there.
bool make(int parent, const std::string& name) {
  if (::mkdirat(parent, name.c_str(), kAllThatTheUmaskLeaves) == 0) {
    return true;
  }
  if (errno != EEXIST) {
    fail("cannot make the folder \"" + name + "\"");
  }
  return false;
}

}  // namespace

TargetFolder openTargetFolder(const std::string& groupFolder,
                              const std::vector<std::string>& folders, MissingFolders missing) {
  const bool mayMake = missing == MissingFolders::kMake;
  TargetFolder target;
  target.folder = CUniqueFd(::open(groupFolder.c_str(), kOpenFolder));
  if (!target.folder.valid() && errno == ENOENT && mayMake) {
    target.made = make(AT_FDCWD, groupFolder);
    target.folder = CUniqueFd(::open(groupFolder.c_str(), kOpenFolder));
  }
  if (!target.folder.valid()) {
    fail("cannot open the group's folder");
  }
  for (const std::string& name : folders) {
    const int parent = target.folder.get();
    CUniqueFd next(::openat(parent, name.c_str(), kOpenFolder | O_NOFOLLOW));
    if (!next.valid() && errno == ENOENT && mayMake) {
      target.made = make(parent, name) || target.made;
      next = CUniqueFd(::openat(parent, name.c_str(), kOpenFolder | O_NOFOLLOW));
    }
    if (!next.valid()) {
      fail("cannot open the folder \"" + name + "\" below the group's");
    }
    target.folder = std::move(next);
  }
  return target;
}

}  // namespace zt_transfers
