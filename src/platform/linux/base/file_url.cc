#include "files/file_url.h"

#include "files/file_status.h"
#include "files/percent_encoding.h"

namespace zantrio {

void filePathToUrl(const std::string& path, std::string& url) {
  FileStatus status;
  filePathToUrl(path, readFileStatus(path, status) == 0 && status.isDirectory(), url);
}

void filePathToUrl(const std::string& path, bool isDirectory, std::string& url) {
  url = "file://";
  appendPercentEncodedPath(path, url);
  if (isDirectory && !path.ends_with('/')) {
    url += '/';
  }
}

}  // namespace zantrio
