#include "files/folder_listing.h"

#include <cerrno>
#include <string_view>

namespace zantrio {

CFolderListing::CFolderListing(const std::string& folder) : stream_(opendir(folder.c_str())) {
  if (stream_) {
    readNames();
  } else {
    error_ = errno;
  }
}

void CFolderListing::readNames() {
  // Only errno tells the end from an error. The stream is this object's own, so readdir is safe on
  // every thread.
  errno = 0;
  while (const dirent* entry = readdir(stream_.get())) {  // NOLINT(concurrency-mt-unsafe)
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names_.emplace_back(name);
    }
    errno = 0;
  }
  error_ = errno;
}

}  // namespace zantrio
