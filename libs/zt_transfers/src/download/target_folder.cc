#include "download/target_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "download/new_folders.h"
#include "base/system_failure.h"

namespace zt_transfers {
namespace {

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t kAllThatTheUmaskLeaves = 0777;

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

CUniqueFd openGroupFolder(const std::string& path, bool mayMake) {
  CUniqueFd folder(::open(path.c_str(), kOpenFolder));
  if (!folder.valid() && errno == ENOENT && mayMake) {
    const bool made = ::mkdir(path.c_str(), kAllThatTheUmaskLeaves) == 0;
    if (!made && errno != EEXIST && errno != ENOENT) {
      failWithErrno("cannot make the group's folder");
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
    failWithErrno("cannot open the group's folder");
  }
  return folder;
}

void make(int parent, const std::string& name) {
  if (::mkdirat(parent, name.c_str(), kAllThatTheUmaskLeaves) == 0) {
    noteMade(parent);
  } else if (errno != EEXIST) {
    failWithErrno("cannot make the folder \"" + name + "\"");
  }
}

}  // namespace

CUniqueFd openTargetFolder(const std::string& groupFolder, const std::vector<std::string>& folders,
                           MissingFolders missing) {
  const bool mayMake = missing == MissingFolders::kMake;
  CUniqueFd folder = openGroupFolder(groupFolder, mayMake);
  for (const std::string& name : folders) {
    const int parent = folder.get();
    CUniqueFd next(::openat(parent, name.c_str(), kOpenFolder | O_NOFOLLOW));
    if (!next.valid() && errno == ENOENT && mayMake) {
      make(parent, name);
      next = CUniqueFd(::openat(parent, name.c_str(), kOpenFolder | O_NOFOLLOW));
    }
    if (!next.valid()) {
      failWithErrno("cannot open the folder \"" + name + "\" below the group's");
    }
    folder = std::move(next);
  }
  return folder;
}

}  // namespace zt_transfers
