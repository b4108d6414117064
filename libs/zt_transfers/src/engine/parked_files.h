#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>

namespace zt_transfers {

// A server, see COriginTable. 0: none.
using OriginId = std::uint32_t;

// A group's files whose server is known and that wait for their turn there, in the order of their
// arrival. An entry can be out of date: its file may have been begun or removed meanwhile.
//
// Thread: none of its own; the engine guards it.
class CParkedFiles {
 public:
  void add(OriginId origin, std::uint32_t index) { files_[origin].push_back(index); }
  void addFirst(OriginId origin, std::uint32_t index) { files_[origin].push_front(index); }
  // The next file that `isValid` accepts.
  template <typename IsValid>
  std::optional<std::uint32_t> take(OriginId origin, const IsValid& isValid) {
    const auto found = files_.find(origin);
    while (found != files_.end() && !found->second.empty()) {
      const std::uint32_t index = found->second.front();
      found->second.pop_front();
      if (isValid(index)) {
        eraseIfEmpty(found);
        return index;
      }
    }
    if (found != files_.end()) {
      files_.erase(found);
    }
    return std::nullopt;
  }
  void clear() { files_.clear(); }

  // Each element's `first` is an origin at which files are parked.
  auto begin() const { return files_.begin(); }
  auto end() const { return files_.end(); }

 private:
  using Files = std::map<OriginId, std::deque<std::uint32_t>>;

  void eraseIfEmpty(Files::iterator entry) {
    if (entry->second.empty()) {
      files_.erase(entry);
    }
  }

  Files files_;
};

}  // namespace zt_transfers
