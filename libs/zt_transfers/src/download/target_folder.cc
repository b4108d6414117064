#include "download/target_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "download/new_folders.h"

namespace zt_transfers {
namespace {

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t kAllThatTheUmaskLeaves = 0777;

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void failGone() {
  throw CFolderGone(ENOENT, std::generic_category(),
                    "the group's folder is not there; its disk may not be mounted");
}

// The new folder is on the same file system as this one, or is this one.
void noteMade(int folder) {
  struct stat status {};
  if (::fstat(folder, &status) == 0) {
    CNewFolders::shared().noteMade(status.st_dev);
  }
}

CUniqueFd openGroupFolder(const std::string& path, bool mayMake, bool& made) {
  CUniqueFd folder(::open(path.c_str(), kOpenFolder));
  if (!folder.valid() && errno == ENOENT && mayMake) {
    if (::mkdir(path.c_str(), kAllThatTheUmaskLeaves) == 0) {
      made = true;
    } else if (errno != EEXIST && errno != ENOENT) {
      fail("cannot make the group's folder");
    }
    folder = CUniqueFd(::open(path.c_str(), kOpenFolder));
    if (made && folder.valid()) {
      noteMade(folder.get());
    }
  }
  if (!folder.valid() && errno == ENOENT) {
    failGone();
  }
  if (!folder.valid()) {
    fail("cannot open the group's folder");
  }
  return folder;
}

// True when it was made, false when it was there.
bool make(int parent, const std::string& name) {
  if (::mkdirat(parent, name.c_str(), kAllThatTheUmaskLeaves) == 0) {
    noteMade(parent);
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
  target.folder = openGroupFolder(groupFolder, mayMake, target.made);
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
