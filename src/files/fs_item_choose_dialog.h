#pragma once

#include <string>

namespace zantrio {

// What the dialogs that choose files or folders have in common.
class IFsItemChooseDialog {
 public:
  virtual ~IFsItemChooseDialog() = default;

  // The text of the title bar, UTF-8.
  virtual void setTitle(const std::string& title) = 0;
};

}  // namespace zantrio
