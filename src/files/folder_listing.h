#pragma once

#include <dirent.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "files/file_status.h"

namespace zantrio {

struct EntryStatus {
  int error = 0;  // 0, or why `status` is not set
  FileStatus status;
};

// Reads a folder and keeps it open, so that its entries can be looked up relative to it.
// Thread: any, one at a time.
class CFolderListing {
 public:
  // An error while opening or reading the folder is kept in error().
  explicit CFolderListing(const std::string& folder);

  // All entries but "." and "..", in the order of the file system.
  std::vector<std::string> takeNames() { return std::move(names_); }
  int error() const { return error_; }

  // The statuses of the named entries, in the order of the names; each takes one system call.
  // `prefix` is the folder's path with a trailing "/".
  std::vector<EntryStatus> readStatuses(const std::string& prefix,
                                        const std::vector<std::string>& names) const;

  void close() { stream_.reset(); }

 private:
  struct CloseStream {
    void operator()(DIR* stream) const { closedir(stream); }
  };

  void readNames();

  std::unique_ptr<DIR, CloseStream> stream_;
  std::vector<std::string> names_;
  int error_ = 0;
};

}  // namespace zantrio
