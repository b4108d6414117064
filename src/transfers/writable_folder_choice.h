#pragma once

#include <string>

namespace zantrio {

// Lets the user choose a folder in which downloads can be put.
// Thread: UI, which is blocked while the dialog is open.
class CWritableFolderChoice {
 public:
  // A folder that cannot be written is told in an alert, and the dialog is shown again, until one
  // can be written (true, its path in `folder`) or the user cancels (false, `folder` as it was).
  bool choose(std::string& folder) const;
};

}  // namespace zantrio
