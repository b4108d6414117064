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
    addItem(item);
  }
  Json::Value response(Json::objectValue);
  response["files"] = std::move(files_);
  if (!directoryName_.empty()) {
    response["directoryName"] = toValidUtf8(directoryName_);
    response["summary"] = toValidUtf8(directoryName_);
  }
  return response;
}

// Sorts every folder before the items inside it.
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

void CFileDrop::addItem(const Poco::Path& item) {
  const std::string path = item.toString();
  FileStatus status;
  if (!exists(path, status)) {
    reportMissing(path);
    return;
  }
  // A hidden item is kept: the walk of its folder skips it.
  if (!isHidden(item) && isInAddedFolder(path)) {
    logWarning("Handling files drop: Item ", path, " is a child of another item.");
    return;
  }
  if (status.isDirectory()) {
    addFolder(item);
  } else if (status.isRegularFile()) {
    addFile(item);
  } else {
    logError("handleDrop: file ", path, " is nor a regular file or a directory");
  }
  keepCommonFolderOf(item);
}

// With several folders, the "path" of the records begins with the name of the dropped folder.
void CFileDrop::addFolder(const Poco::Path& item) {
  const std::string folder = item.toString();
  addedFolders_.insert(folder);
  CFolderWalk(files_, multipleFolders_ ? item.parent().toString() : folder).walk(folder);
}

void CFileDrop::addFile(const Poco::Path& item) {
  // A file that has vanished since the check stays in the list as an empty object.
  Json::Value record(Json::objectValue);
  fillFileItemJson(record, item.toString(), "", "");
  files_.append(std::move(record));
}

void CFileDrop::keepCommonFolderOf(const Poco::Path& item) {
  if (checksCommonFolder_ && !directoryName_.empty() && parentFolderName(item) != directoryName_) {
    directoryName_.clear();
  }
}

bool CFileDrop::isInAddedFolder(std::string_view path) const {
  for (std::size_t end = path.find('/'); end != std::string_view::npos;
       end = path.find('/', end + 1)) {
    if (addedFolders_.find(path.substr(0, end)) != addedFolders_.end()) {
      return true;
    }
  }
  return false;
}

}  // namespace zantrio
