#pragma once

#include <memory>
#include <string>

namespace zantrio {

// The system's clipboard. Ownership: the caller's. Thread: UI.
class IClipboard {
 public:
  virtual ~IClipboard() = default;

  // Replaces what the clipboard holds by `text`, the bytes of a UTF-8 plain text. False, with the
  // clipboard untouched, when there is no clipboard or it did not take the text.
  virtual bool copyText(const std::string& text) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IClipboard> createClipboard();

}  // namespace zantrio
