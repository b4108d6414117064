#pragma once

#include <unistd.h>

#include <utility>

namespace zt_transfers {

// Owns a file descriptor.
class CUniqueFd {
 public:
  CUniqueFd() = default;
  explicit CUniqueFd(int descriptor) : descriptor_(descriptor) {}
  CUniqueFd(CUniqueFd&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  CUniqueFd& operator=(CUniqueFd&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  CUniqueFd(const CUniqueFd&) = delete;
  CUniqueFd& operator=(const CUniqueFd&) = delete;
  ~CUniqueFd() { reset(); }

  bool valid() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  void reset() {
    if (valid()) {
      ::close(std::exchange(descriptor_, -1));
    }
  }

 private:
  int descriptor_ = -1;
};

}  // namespace zt_transfers
