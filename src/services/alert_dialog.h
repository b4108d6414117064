#pragma once

#include <memory>
#include <string>

namespace zantrio {

// A notice that the user dismisses with its only button.
// Ownership: the caller's; a notice that is shown outlives the object. Thread: UI.
class IAlertDialog {
 public:
  virtual ~IAlertDialog() = default;

  // Shows `text` and returns at once; the notice stays until the user dismisses it, and several may
  // stand at the same time. A notice that cannot be shown is dropped. Linux takes the bytes of
  // `text` for UTF-8, macOS takes them for Mac Roman.
  virtual void show(const std::string& text) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IAlertDialog> createAlertDialog();

}  // namespace zantrio
