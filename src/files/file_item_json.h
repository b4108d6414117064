#pragma once

#include <json/value.h>

#include <string>

#include "files/file_status.h"

namespace zantrio {

// Fills `record` with the file item record of the item at `path` (absolute): "fileURL", "name",
// "path", "size" (bytes), "created" and "modified" (milliseconds since the Unix epoch).
// `fileURL` empty: made from the path. "path" is the item's folder relative to `rootFolder`, null
// when there is no root, or the item lies in it directly or not at all.
// False when the item does not exist (`record` is untouched then) or could not be read.
// Thread: any.
bool fillFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                      const std::string& rootFolder);

// The value of "path". The root is compared byte by byte with the beginning of the path, so that
// the root /a/b also counts for /a/bc. Throws std::out_of_range for a path that goes on with the
// root's last name and has no separator behind it.
std::string relativeFolder(const std::string& path, const std::string& rootFolder);

// For a caller that knows already what belongs into the record.
void setFileItemJson(Json::Value& record, const std::string& path, const std::string& fileURL,
                     const std::string& relativeFolder, const FileStatus& status);

}  // namespace zantrio
