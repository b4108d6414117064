#include "files/file_item_json.h"

#include <cstddef>
#include <exception>
#include <string_view>

#include "app/text/utf8_text.h"
#include "files/file_url.h"

namespace zantrio {
namespace {

// Static texts save a copy of each key for every record.
const Json::StaticString kFileUrl("fileURL");
const Json::StaticString kName("name");
const Json::StaticString kPath("path");
const Json::StaticString kSize("size");
const Json::StaticString kCreated("created");
const Json::StaticString kModified("modified");

std::string_view fileName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

// Most names are ASCII, which needs no conversion.
Json::Value shownText(std::string_view text) {
  return isAscii(text) ? Json::Value(text.data(), text.data() + text.size())
                       : Json::Value(toValidUtf8(text));
}

// Ends with "/".
std::string parentFolder(const std::string& path) {
  const bool isFolderPath = path.size() > 1 && path.ends_with('/');
  return path.substr(0, path.rfind('/', isFolderPath ? path.size() - 2 : path.npos) + 1);
}

Json::Int64 toMilliseconds(std::int64_t microseconds) {
  return microseconds / 1000;
}

}  // namespace

std::string relativeFolder(const std::string& path, const std::string& rootFolder) {
  if (rootFolder.empty() || !path.starts_with(rootFolder)) {
    return {};
  }
  const std::string parent = parentFolder(path);
  const char last = rootFolder.back();
  const std::size_t skip = rootFolder.size() + (last == '/' || last == '\\' ? 0 : 1);
  // For an item directly in the root, `skip` is the length of `parent`, and substr returns an empty
  // text whatever length is given; the unsigned underflow of the length is harmless.
  return parent.substr(skip, parent.size() - skip - 1);
}

void setFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                     const std::string& relativeFolder, const FileStatus& status) {
  record[kFileUrl] = fileURL;
  record[kName] = shownText(fileName(path));
  record[kPath] = relativeFolder.empty() ? Json::Value() : shownText(relativeFolder);
  record[kSize] = Json::UInt64{status.size};
  record[kCreated] = toMilliseconds(status.createdMicros);
  record[kModified] = toMilliseconds(status.modifiedMicros);
}

bool fillFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                      const std::string& rootFolder) {
  try {
    FileStatus status;
    if (readFileStatus(path, status) != 0) {
      return false;
    }
    std::string url = fileURL;
    if (url.empty()) {
      filePathToUrl(path, status.isDirectory(), url);
    }
    setFileItemJson(record, path, url, relativeFolder(path, rootFolder), status);
    return true;
  } catch (const std::exception&) {
    return false;  // the caller reports it, where it is worth a line
  }
}

}  // namespace zantrio
