#pragma once

#include <string>

namespace zantrio {

// What the dialogs that choose files or folders have in common.
class IFsItemChooseDialog {
 public:
  virtual ~IFsItemChooseDialog() = default;

  // The text of the title bar. Linux takes its bytes for UTF-8, macOS for the system's default
  // encoding, so it should be ASCII.
  virtual void setTitle(const std::string& title) = 0;
};

}  // namespace zantrio
