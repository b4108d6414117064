#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace zt_transfers {

// Stores many small texts without overhead: each takes its bytes and its length. All are freed
// together.
//
// Thread: one at a time; several may read while none adds.
class CTextArena {
 public:
  // Returns the text's address, for `at`.
  const char* add(std::string_view text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    const std::size_t needed = sizeof length + text.size();
    if (needed > left_) {
      left_ = needed > kBlock ? needed : kBlock;
      blocks_.emplace_back(new char[left_]);
      free_ = blocks_.back().get();
    }
    const char* place = free_;
    std::memcpy(free_, &length, sizeof length);
    text.copy(free_ + sizeof length, text.size());
    free_ += needed;
    left_ -= needed;
    return place;
  }
  static std::string_view at(const char* place) {
    std::uint32_t length = 0;
    std::memcpy(&length, place, sizeof length);
    return {place + sizeof length, length};
  }

 private:
  static constexpr std::size_t kBlock = 16 * 1024;

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace zt_transfers
