#include "files/folder_listing.h"

#include <cerrno>
#include <climits>
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
  // Only errno distinguishes the end from an error. No other thread uses the stream, so readdir is
  // safe.
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

std::vector<EntryStatus> CFolderListing::readStatuses(const std::string& prefix,
                                                      const std::vector<std::string>& names) const {
  const int folder = stream_ ? dirfd(stream_.get()) : -1;
  std::vector<EntryStatus> entries(names.size());
  for (std::size_t index = 0; index < names.size(); ++index) {
    EntryStatus& entry = entries[index];
    if (prefix.size() + names[index].size() >= PATH_MAX) {
      entry.error = ENAMETOOLONG;  // the path could not be opened
    } else {
      entry.error = readFileStatus(folder, names[index], entry.status);
    }
  }
  return entries;
}

}  // namespace zantrio
