#pragma once

#include "services/os_file_explorer.h"

namespace zantrio {

// Opens folders through the shared workspace and URLs through Launch Services.
class COsFileExplorerMac : public IOsFileExplorer {
 public:
  bool openFolder(const std::string& path) override;
  // Invalid or unhandled URLs are left to the system.
  bool openURL(const std::string& url) override;
};

}  // namespace zantrio
