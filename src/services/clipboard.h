#pragma once

#include <memory>
#include <string>

namespace zantrio {

// The system's clipboard. Ownership: the caller's. Thread: UI.
class IClipboard {
 public:
  virtual ~IClipboard() = default;

  // Replaces the contents of the clipboard with `text` (UTF-8, plain text). False, with the
  // clipboard unchanged, when there is no clipboard or it rejected the text.
  virtual bool copyText(const std::string& text) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IClipboard> createClipboard();

}  // namespace zantrio
