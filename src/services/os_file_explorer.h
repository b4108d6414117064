#pragma once

#include <memory>
#include <string>

namespace zantrio {

// Opens things in the programs that the user has chosen for them. Ownership: the caller's.
// Thread: UI.
class IOsFileExplorer {
 public:
  virtual ~IOsFileExplorer() = default;

  // Opens the folder `path` (absolute, UTF-8) in the file manager. False when the request could
  // not be made; whether the file manager showed the folder is not known.
  virtual bool openFolder(const std::string& path) = 0;
  // Opens `url`, an absolute URL in ASCII, in the user's program for it. The text may come from
  // the page; each platform tells what it refuses. Whether the program could open the URL is not
  // known.
  virtual bool openURL(const std::string& url) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IOsFileExplorer> createOsFileExplorer();

}  // namespace zantrio
