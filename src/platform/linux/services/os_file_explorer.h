#pragma once

#include "services/os_file_explorer.h"

namespace zantrio {

// Opens folders through the file manager on the session bus (org.freedesktop.FileManager1) or, if
// it fails, through xdg-open; URLs through xdg-open. Does not wait for either.
class COsFileExplorerLinux : public IOsFileExplorer {
 public:
  // Returns false unless the path is a folder: xdg-open would run or open a file.
  bool openFolder(const std::string& path) override;
  // Returns false for URLs that isOpenableUrl rejects.
  bool openURL(const std::string& url) override;
};

}  // namespace zantrio
