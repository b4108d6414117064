#include "files/folder_walk.h"

#include <Poco/Path.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include "app/log/logger.h"
#include "files/file_item_json.h"
#include "files/file_url.h"
#include "files/folder_listing.h"
#include "files/path_names.h"

namespace zantrio {
namespace {

std::string withTrailingSlash(const std::string& folder) {
  return folder.ends_with('/') ? folder : folder + '/';
}

void reportUnreadable(const std::string& path, int error) {
  if (error != ENOENT) {
    logWarning("FileHandleChooser: left out ", path, ": ", std::generic_category().message(error));
  }
}

bool isHiddenName(const std::string& name) {
  return name.starts_with('.');
}

}  // namespace

CFolderWalk::CFolderWalk(Json::Value& files, std::string root)
    : files_(files), root_(std::move(root)) {}

void CFolderWalk::walk(const std::string& folder) {
  if (folder != root_ && isHidden(Poco::Path(folder))) {
    return;
  }
  FileStatus status;
  const int error = readFileStatus(folder, status);
  if (error != 0) {
    reportUnreadable(folder, error);
    return;
  }
  enterFolder(folder, status.identity);
}

void CFolderWalk::enterFolder(const std::string& folder, const FileStatus::Identity& identity) {
  if (isEntered(identity)) {
    logWarning("FileHandleChooser: left out ", folder, ": it leads back to a folder that holds it");
    return;
  }
  entered_.push_back(identity);
  addEntries(folder);
  entered_.pop_back();
}

void CFolderWalk::addEntries(const std::string& folder) {
  CFolderListing listing(folder);
  if (listing.error() != 0) {
    reportUnreadable(folder, listing.error());
  }
  std::vector<std::string> names = listing.takeNames();
  std::erase_if(names, isHiddenName);
  const std::string prefix = withTrailingSlash(folder);
  const std::vector<EntryStatus> statuses = listing.readStatuses(prefix, names);
  listing.close();  // descriptors are few, and the recursion may go deep
  // Equal for all files of one folder, so it is computed for any name.
  const std::string relative = relativeFolder(prefix + 'x', root_);
  for (std::size_t index = 0; index < names.size(); ++index) {
    const std::string path = prefix + names[index];
    const auto& [error, status] = statuses[index];
    if (error != 0) {
      reportUnreadable(path, error);
    } else {
      addEntry(path, relative, status);
    }
  }
}

void CFolderWalk::addEntry(const std::string& path, const std::string& relative,
                           const FileStatus& status) {
  if (status.isDirectory()) {
    enterFolder(path, status.identity);
  } else if (status.isRegularFile()) {
    addFile(path, relative, status);
  }
}

void CFolderWalk::addFile(const std::string& path, const std::string& relative,
                          const FileStatus& status) {
  url_.clear();  // stays empty when the path cannot be converted
  filePathToUrl(path, false, url_);
  setFileItemJson(files_.append(Json::Value(Json::objectValue)), path, url_, relative, status);
}

bool CFolderWalk::isEntered(const FileStatus::Identity& identity) const {
  return std::find(entered_.begin(), entered_.end(), identity) != entered_.end();
}

}  // namespace zantrio
