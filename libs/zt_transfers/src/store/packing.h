#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zt_transfers {

// Writes values into one block of bytes: numbers with seven bits a byte, the lowest first; texts as
// their length and their bytes.
class CPacker {
 public:
  void reserve(std::size_t bytes) { bytes_.reserve(bytes); }
  void number(std::uint64_t value) {
    while (value >= 0x80) {
      bytes_.push_back(static_cast<char>(value | 0x80));
      value >>= 7;
    }
    bytes_.push_back(static_cast<char>(value));
  }
  void text(std::string_view value) {
    number(value.size());
    bytes_.append(value);
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// Reads such a block. Past its end it returns 0 and empty texts, and `ok` is false.
class CUnpacker {
 public:
  explicit CUnpacker(std::string_view bytes) : left_(bytes) {}

  std::uint64_t number() {
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 7) {
      if (left_.empty()) {
        break;
      }
      const auto byte = static_cast<unsigned char>(left_.front());
      left_.remove_prefix(1);
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if ((byte & 0x80) == 0) {
        return value;
      }
    }
    return fail();
  }
  std::string_view text() {
    const std::uint64_t length = number();
    if (length > left_.size()) {
      fail();
      return {};
    }
    const std::string_view value = left_.substr(0, static_cast<std::size_t>(length));
    left_.remove_prefix(value.size());
    return value;
  }

  bool ok() const { return ok_; }
  std::size_t left() const { return left_.size(); }

 private:
  std::uint64_t fail() {
    ok_ = false;
    left_ = {};
    return 0;
  }

  std::string_view left_;
  bool ok_ = true;
};

}  // namespace zt_transfers
