#include "files/folder_walk.h"

#include <Poco/Path.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "app/logger.h"
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
  listAndTakeEntries(folder);
  entered_.pop_back();
}

void CFolderWalk::listAndTakeEntries(const std::string& folder) {
  std::vector<std::string> names;
  const int error = listFolder(folder, names);
  if (error != 0) {
    reportUnreadable(folder, error);
  }
  const std::string prefix = withTrailingSlash(folder);
  // The same for all files of one folder; any name will do to ask for it.
  const std::string relative = relativeFolder(prefix + 'x', root_);
  for (const std::string& name : names) {
    if (!name.starts_with('.')) {
      takeEntry(prefix + name, relative);
    }
  }
}

void CFolderWalk::takeEntry(const std::string& path, const std::string& relative) {
  FileStatus status;
  const int error = readFileStatus(path, status);
  if (error != 0) {
    reportUnreadable(path, error);
  } else if (status.isDirectory()) {
    enterFolder(path, status.identity);
  } else if (status.isRegularFile()) {
    takeFile(path, relative, status);
  }
}

void CFolderWalk::takeFile(const std::string& path, const std::string& relative,
                           const FileStatus& status) {
  std::string url;
  filePathToUrl(path, false, url);
  setFileItemJson(files_.append(Json::Value(Json::objectValue)), path, url, relative, status);
}

bool CFolderWalk::isEntered(const FileStatus::Identity& identity) const {
  return std::find(entered_.begin(), entered_.end(), identity) != entered_.end();
}

}  // namespace zantrio
