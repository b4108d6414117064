#pragma once

#include <memory>
#include <string>

#include "devservice/content.h"

namespace zantrio::devservice {

// Content in memory.
class CTextContent : public IContent {
 public:
  explicit CTextContent(std::string text) : text_(std::move(text)) {}

  std::size_t readAt(std::span<char> buffer, std::uint64_t offset) const override;

 private:
  std::string text_;
};

// `size` incompressible bytes, always the same, generated when they are read: a large file without
// disk space.
class CNoiseContent : public IContent {
 public:
  explicit CNoiseContent(std::uint64_t size) : size_(size) {}

  std::size_t readAt(std::span<char> buffer, std::uint64_t offset) const override;

 private:
  std::uint64_t size_;
};

// A picture in PNG format: the sun over the sea, between dawn (0) and noon (1).
std::string drawSeascape(unsigned width, unsigned height, double timeOfDay);

}  // namespace zantrio::devservice
