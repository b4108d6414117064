#pragma once

#include <string>

namespace zantrio {

// Sets `url` to the absolute `file:` URL of the absolute path `path` (UTF-8 or any other bytes):
// percent-encoded, with a trailing "/" for a directory. `url` is left as it was when the path
// cannot be converted. Done by the platform. Thread: any.
void filePathToUrl(const std::string& path, std::string& url);

// The same for a caller that knows whether `path` is a directory; asks the file system nothing.
void filePathToUrl(const std::string& path, bool isDirectory, std::string& url);

// Sets `path` to the decoded path of the `file:` URL `url`. A query or a fragment counts as part
// of the path. Throws Poco::SyntaxException when `url` is no URL. Thread: any.
void fileUrlToPath(const std::string& url, std::string& path);

}  // namespace zantrio
