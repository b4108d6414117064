#pragma once

#include <dirent.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zantrio {

// Reads a folder, and holds it open so that its entries can be asked for without their whole path.
// Thread: any, one at a time.
class CFolderListing {
 public:
  // What kept the folder from being opened, or from being read to its end, stands in error().
  explicit CFolderListing(const std::string& folder);

  // All entries but "." and "..", in the order in which the file system gives them.
  std::vector<std::string> takeNames() { return std::move(names_); }
  int error() const { return error_; }

  // The open folder's descriptor; -1 when it is not open.
  int descriptor() const { return stream_ ? dirfd(stream_.get()) : -1; }
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
