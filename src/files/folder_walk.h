#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "files/file_status.h"

namespace zantrio {

// Describes the regular files in a folder and in all folders below it, hidden ones (names that
// begin with ".") left out. The file system is asked once for each entry.
//
// Symbolic links count as what they lead to. A link to a folder that holds it, which would have no
// end, is left out, as is what cannot be read; both are logged. What vanished since it was listed
// is left out silently.
//
// Thread: any; one walk at a time.
class CFolderWalk {
 public:
  // `files`, a JSON array that outlives the walk, gets one file item record for each file, in the
  // order of the file system; the records' "path" is relative to `root`.
  CFolderWalk(Json::Value& files, std::string root);

  // Adds nothing when there is no such folder, or when it is hidden and not itself the root.
  void walk(const std::string& folder);

 private:
  void enterFolder(const std::string& folder, const FileStatus::Identity& identity);
  void takeEntries(const std::string& folder);
  void takeEntry(const std::string& path, const std::string& relative, const FileStatus& status);
  void takeFile(const std::string& path, const std::string& relative, const FileStatus& status);
  bool isEntered(const FileStatus::Identity& identity) const;

  Json::Value& files_;
  const std::string root_;
  // The folder being walked and those that lead to it.
  std::vector<FileStatus::Identity> entered_;
  std::string url_;  // of the file at hand; kept for its memory
};

}  // namespace zantrio
