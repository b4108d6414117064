#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace zt_transfers {

// A hash index from ids to indices, at about eight bytes each: it holds only the indices and gets
// the ids through `IdOf`.
//
// Thread: one at a time.
template <typename IdOf>
class CIdIndex {
 public:
  explicit CIdIndex(IdOf idOf) : idOf_(std::move(idOf)) {}

  std::optional<std::uint32_t> find(std::string_view id) const {
    if (slots_.empty()) {
      return std::nullopt;
    }
    for (std::size_t at = home(id);; at = next(at)) {
      if (slots_[at] == kFree) {
        return std::nullopt;
      }
      if (slots_[at] != kGone && idOf_(slots_[at]) == id) {
        return slots_[at];
      }
    }
  }

  // The id must be new.
  void insert(std::uint32_t index) {
    if ((used_ + 1) * 4 > slots_.size() * 3) {
      grow();
    }
    place(index);
    ++count_;
  }

  // Call it while `IdOf` still knows the id.
  void erase(std::uint32_t index) {
    if (slots_.empty()) {
      return;
    }
    for (std::size_t at = home(idOf_(index)); slots_[at] != kFree; at = next(at)) {
      if (slots_[at] == index) {
        slots_[at] = kGone;
        --count_;
        return;
      }
    }
  }

 private:
  static constexpr std::uint32_t kFree = 0xFFFFFFFF;
  static constexpr std::uint32_t kGone = 0xFFFFFFFE;

  std::size_t home(std::string_view id) const {
    return std::hash<std::string_view>()(id) & (slots_.size() - 1);
  }
  std::size_t next(std::size_t at) const { return (at + 1) & (slots_.size() - 1); }

  void place(std::uint32_t index) {
    std::size_t at = home(idOf_(index));
    while (slots_[at] != kFree) {
      at = next(at);
    }
    slots_[at] = index;
    ++used_;
  }

  // Enlarges the table and drops erased slots.
  void grow() {
    std::vector<std::uint32_t> before;
    before.swap(slots_);
    std::size_t size = 16;
    while (size < (count_ + 1) * 2) {
      size *= 2;
    }
    slots_.assign(size, kFree);
    used_ = 0;
    for (const std::uint32_t index : before) {
      if (index != kFree && index != kGone) {
        place(index);
      }
    }
  }

  const IdOf idOf_;
  std::vector<std::uint32_t> slots_;  // their number is a power of two
  std::size_t used_ = 0;              // slots that are not kFree
  std::size_t count_ = 0;             // indices in the table
};

}  // namespace zt_transfers
