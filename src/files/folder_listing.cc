#include "files/folder_listing.h"

#include <dirent.h>

#include <cerrno>
#include <memory>
#include <string_view>

namespace zantrio {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

}  // namespace

int listFolder(const std::string& folder, std::vector<std::string>& names) {
  const std::unique_ptr<DIR, CloseFolder> stream(opendir(folder.c_str()));
  if (!stream) {
    return errno;
  }
  // Only errno tells the end from an error. The stream is this call's own, so readdir is safe on
  // every thread.
  errno = 0;
  while (const dirent* entry = readdir(stream.get())) {  // NOLINT(concurrency-mt-unsafe)
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
    errno = 0;
  }
  return errno;
}

}  // namespace zantrio
