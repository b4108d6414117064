#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "files/file_status.h"

namespace zantrio {

// Describes the regular files in a folder and in all folders below it, without hidden ones (names
// that begin with "."). Each entry takes one system call.
//
// Symbolic links are followed. A link to an enclosing folder would never end and is skipped, as are
// unreadable items; both are logged. Items that vanished after they were listed are skipped
// silently.
//
// Thread: any; one walk at a time.
class CFolderWalk {
 public:
  // `files`, a JSON array that outlives the walk, receives one file item record for each file in
  // the order of the file system. The "path" of the records is relative to `root`.
  CFolderWalk(Json::Value& files, std::string root);

  // Adds nothing when the folder does not exist, or is hidden and not the root itself.
  void walk(const std::string& folder);

 private:
  void enterFolder(const std::string& folder, const FileStatus::Identity& identity);
  void addEntries(const std::string& folder);
  void addEntry(const std::string& path, const std::string& relative, const FileStatus& status);
  void addFile(const std::string& path, const std::string& relative, const FileStatus& status);
  bool isEntered(const FileStatus::Identity& identity) const;

  Json::Value& files_;
  const std::string root_;
  // The folder being walked and its enclosing ones.
  std::vector<FileStatus::Identity> entered_;
  std::string url_;  // of the file at hand; kept for its memory
};

}  // namespace zantrio
