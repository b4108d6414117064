#pragma once

#include <string>

namespace zantrio {

// Sets `url` to the absolute `file:` URL of the absolute path `path` (UTF-8 or any other bytes):
// percent-encoded, with a trailing "/" for a directory. Leaves `url` unchanged when the path cannot
// be converted. Implemented by each platform. Thread: any.
void filePathToUrl(const std::string& path, std::string& url);

// The same for callers that know whether `path` is a directory; does not access the file system.
void filePathToUrl(const std::string& path, bool isDirectory, std::string& url);

// Sets `path` to the decoded path of the `file:` URL `url`. A query or a fragment counts as part of
// the path. Throws Poco::SyntaxException for an invalid URL. Thread: any.
void fileUrlToPath(const std::string& url, std::string& path);

}  // namespace zantrio
