#pragma once

#include <string>
#include <vector>

#include "files/file_status.h"
#include "files/folder_listing.h"

namespace zantrio {

struct EntryStatus {
  int error = 0;  // 0, or why `status` says nothing
  FileStatus status;
};

// What the file system tells about the named entries of a folder, in the order of the names; each
// is asked for once, by its name in the open folder. `prefix` is the folder's path with a trailing
// "/". Thread: any.
std::vector<EntryStatus> readEntryStatuses(const CFolderListing& listing, const std::string& prefix,
                                           const std::vector<std::string>& names);

}  // namespace zantrio
