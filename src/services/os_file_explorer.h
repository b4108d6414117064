#pragma once

#include <memory>
#include <string>

namespace zantrio {

// Opens folders and URLs with the user's default programs. Ownership: the caller's. Thread: UI.
class IOsFileExplorer {
 public:
  virtual ~IOsFileExplorer() = default;

  // Opens the folder `path` (absolute, UTF-8) in the file manager. False when the request could not
  // be made; whether the file manager displayed the folder is not known.
  virtual bool openFolder(const std::string& path) = 0;
  // Opens `url`, an absolute URL in ASCII, in the user's default program. The text may come from
  // the page; each platform documents what it refuses. Whether the program could open the URL is
  // not known.
  virtual bool openURL(const std::string& url) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IOsFileExplorer> createOsFileExplorer();

}  // namespace zantrio
