#pragma once

#include <json/value.h>

#include <string>

#include "files/file_status.h"

namespace zantrio {

// Fills in `record` with the file item record of the item at `path` (absolute): "fileURL", "name",
// "path", "size" (bytes), "created" and "modified" (milliseconds since the Unix epoch). An empty
// `fileURL` is made from the path. "path" is the item's folder relative to `rootFolder`; null
// without a root, or when the item is directly in the root or outside of it.
//
// False when the item does not exist (`record` is unchanged then) or cannot be read. Thread: any.
bool fillFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                      const std::string& rootFolder);

// The value of "path". The root is compared byte by byte with the beginning of the path, so the
// root /a/b also matches /a/bc. Throws std::out_of_range for a path that continues the root's last
// name without a separator.
std::string relativeFolder(const std::string& path, const std::string& rootFolder);

// For callers that know the values already.
void setFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                     const std::string& relativeFolder, const FileStatus& status);

}  // namespace zantrio
