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

// Turns a set of dropped items into the answer for the page: files are described, folders walked,
// an item inside a folder that was dropped with it is left out.
// One object serves one drop. Thread: UI.
class CFileDrop {
 public:
  // `items` must not be empty.
  explicit CFileDrop(std::vector<Poco::Path> items);

  // {"files"}, with "directoryName" and "summary" where the items have a folder in common.
  Json::Value describe();

 private:
  // Lets the taken folders be found by a part of a path without a copy of it.
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>()(text);
    }
  };

  void sortByDepth();
  void countFolders();
  void chooseCommonFolder();
  void takeItem(const Poco::Path& item);
  void takeFolder(const Poco::Path& item);
  void takeFile(const Poco::Path& item);
  void keepCommonFolderOf(const Poco::Path& item);
  bool liesInTakenFolder(std::string_view path) const;

  std::vector<Poco::Path> items_;
  Json::Value files_{Json::arrayValue};
  std::unordered_set<std::string, TextHash, std::equal_to<>> takenFolders_;
  std::string directoryName_;
  bool checksCommonFolder_ = false;
  bool multipleFolders_ = false;
};

}  // namespace zantrio
