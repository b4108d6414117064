#pragma once

#include "services/os_file_explorer.h"

namespace zantrio {

// Folders are opened by the shared workspace, URLs by Launch Services.
class COsFileExplorerMac : public IOsFileExplorer {
 public:
  bool openFolder(const std::string& path) override;
  // What is no URL, or one that nothing can open, is left to the system to refuse.
  bool openURL(const std::string& url) override;
};

}  // namespace zantrio
