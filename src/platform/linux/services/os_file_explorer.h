#pragma once

#include "services/os_file_explorer.h"

namespace zantrio {

// Folders are opened by the file manager on the session bus (org.freedesktop.FileManager1), or,
// when it does not answer, by the desktop's opener; URLs by the desktop's opener. Neither is
// waited for.
class COsFileExplorerLinux : public IOsFileExplorer {
 public:
  // False also for what is no folder: the opener would run it or open it in a program.
  bool openFolder(const std::string& path) override;
  // False for every URL that isOpenableUrl refuses.
  bool openURL(const std::string& url) override;
};

}  // namespace zantrio
