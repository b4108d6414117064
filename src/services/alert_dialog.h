#pragma once

#include <memory>
#include <string>

namespace zantrio {

// A message that the user dismisses with its only button. Ownership: the caller's; a displayed
// message outlives the object. Thread: UI.
class IAlertDialog {
 public:
  virtual ~IAlertDialog() = default;

  // Shows `text` without waiting for the user. Several messages may be open at the same time; one
  // that cannot be shown is dropped. Linux takes the bytes of `text` for UTF-8, macOS for Mac
  // Roman.
  virtual void show(const std::string& text) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IAlertDialog> createAlertDialog();

}  // namespace zantrio
