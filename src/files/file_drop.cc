#include "files/file_drop.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "app/log/logger.h"
#include "app/text/utf8_text.h"
#include "files/file_item_json.h"
#include "files/folder_walk.h"
#include "files/path_names.h"

namespace zantrio {
namespace {

void reportMissing(const std::string& path) {
  logError("FileHandleChooser: handleDrop is not able to locate file ", path);
}

bool exists(const std::string& path, FileStatus& status) {
  return readFileStatus(path, status) == 0;
}

}  // namespace

CFileDrop::CFileDrop(std::vector<Poco::Path> items) : items_(std::move(items)) {}

Json::Value CFileDrop::describe() {
  sortByDepth();
  countFolders();
  chooseCommonFolder();
  for (const Poco::Path& item : items_) {
    takeItem(item);
  }
  Json::Value answer(Json::objectValue);
  answer["files"] = std::move(files_);
  if (!directoryName_.empty()) {
    answer["directoryName"] = toValidUtf8(directoryName_);
    answer["summary"] = toValidUtf8(directoryName_);
  }
  return answer;
}

// Puts every folder ahead of what lies inside it.
void CFileDrop::sortByDepth() {
  std::sort(items_.begin(), items_.end(), [](const Poco::Path& left, const Poco::Path& right) {
    return static_cast<std::int32_t>(left.depth()) < static_cast<std::int32_t>(right.depth());
  });
}

void CFileDrop::countFolders() {
  int folders = 0;
  for (const Poco::Path& item : items_) {
    const std::string path = item.toString();
    FileStatus status;
    if (!exists(path, status)) {
      reportMissing(path);
    } else if (status.isDirectory() && ++folders == 2) {
      multipleFolders_ = true;
      return;
    }
  }
}

void CFileDrop::chooseCommonFolder() {
  const Poco::Path& first = items_.front();
  if (items_.size() == 1) {
    directoryName_ = lastComponent(first);
    return;
  }
  FileStatus status;
  if (!exists(first.toString(), status)) {
    return;
  }
  if ((status.isDirectory() && multipleFolders_) || status.isRegularFile()) {
    directoryName_ = parentFolderName(first);
    checksCommonFolder_ = true;
  }
}

void CFileDrop::takeItem(const Poco::Path& item) {
  const std::string path = item.toString();
  FileStatus status;
  if (!exists(path, status)) {
    reportMissing(path);
    return;
  }
  // A hidden item is taken even so: the walk of its folder leaves it out.
  if (!isHidden(item) && liesInTakenFolder(path)) {
    logWarning("Handling files drop: Item ", path, " is a child of another item.");
    return;
  }
  if (status.isDirectory()) {
    takeFolder(item);
  } else if (status.isRegularFile()) {
    takeFile(item);
  } else {
    logError("handleDrop: file ", path, " is nor a regular file or a directory");
  }
  keepCommonFolderOf(item);
}

// Several folders: the records' "path" begins with the name of the dropped folder.
void CFileDrop::takeFolder(const Poco::Path& item) {
  const std::string folder = item.toString();
  takenFolders_.insert(folder);
  CFolderWalk(files_, multipleFolders_ ? item.parent().toString() : folder).walk(folder);
}

void CFileDrop::takeFile(const Poco::Path& item) {
  Json::Value record(Json::objectValue);
  fillFileItemJson(record, item.toString(), "", "");
  files_.append(std::move(record));
}

void CFileDrop::keepCommonFolderOf(const Poco::Path& item) {
  if (checksCommonFolder_ && !directoryName_.empty() && parentFolderName(item) != directoryName_) {
    directoryName_.clear();
  }
}

bool CFileDrop::liesInTakenFolder(std::string_view path) const {
  for (std::size_t end = path.find('/'); end != std::string_view::npos;
       end = path.find('/', end + 1)) {
    if (takenFolders_.find(path.substr(0, end)) != takenFolders_.end()) {
      return true;
    }
  }
  return false;
}

}  // namespace zantrio
