#pragma once

#include <string>

namespace zantrio {

// The folder for downloads whose place the user is not asked for: "Downloads/Zantrio" in the home
// folder. Thread: any.
class CAutoDownloadDirectory {
 public:
  // Makes the folder "Zantrio" where it is missing, but never "Downloads". False, with `directory`
  // as it was, when there is no home folder, no "Downloads" in it, or the folder cannot be made.
  bool find(std::string& directory) const;
};

}  // namespace zantrio
