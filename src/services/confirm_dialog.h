#pragma once

#include <memory>
#include <string>

namespace zantrio {

// A question that is answered with "Yes" or "No". Ownership: the caller's. Thread: UI.
class IConfirmDialog {
 public:
  // How serious the question looks; any other value looks like kStop.
  static constexpr int kCaution = 0;
  static constexpr int kStop = 1;
  static constexpr int kPlain = 2;

  virtual ~IConfirmDialog() = default;

  // Shows `text` and blocks until the user answers. True for "Yes", and also when the question
  // cannot be shown. Linux takes the bytes of `text` for UTF-8, macOS for Mac Roman.
  virtual bool ask(const std::string& text, int kind) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IConfirmDialog> createConfirmDialog();

}  // namespace zantrio
