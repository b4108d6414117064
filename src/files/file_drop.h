#pragma once

#include <Poco/Path.h>
#include <json/value.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "files/file_status.h"

namespace zantrio {

// Describes a set of dropped items to the page: files are described, folders walked, and items
// inside a dropped folder left out. One object serves one drop. Thread: UI.
class CFileDrop {
 public:
  // `items` must not be empty.
  explicit CFileDrop(std::vector<Poco::Path> items);

  // {"files"}, with "directoryName" and "summary" where the items have a folder in common.
  Json::Value describe();

 private:
  // Allows lookups of a part of a path without copying it.
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>()(text);
    }
  };

  void sortByDepth();
  void countFolders();
  void chooseCommonFolder();
  void addItem(const Poco::Path& item);
  void addFolder(const Poco::Path& item);
  void addFile(const Poco::Path& item);
  void keepCommonFolderOf(const Poco::Path& item);
  bool isInAddedFolder(std::string_view path) const;

  std::vector<Poco::Path> items_;
  Json::Value files_{Json::arrayValue};
  std::unordered_set<std::string, TextHash, std::equal_to<>> addedFolders_;
  std::string directoryName_;
  bool checksCommonFolder_ = false;
  bool multipleFolders_ = false;
};

}  // namespace zantrio
