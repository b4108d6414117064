#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

#include "engine/failure.h"

namespace zt_transfers {

// The newest failures of each group; the store has all of them.
//
// Thread: none of its own; the engine guards it.
class CFailureLog {
 public:
  static constexpr std::size_t kMaxOfAGroup = 100;

  struct Entry {
    std::uint32_t index = 0;  // of the file
    Failure failure;
  };

  void add(std::int32_t groupId, std::uint32_t index, Failure failure);
  void forget(std::int32_t groupId, std::uint32_t index);
  void forgetGroup(std::int32_t groupId) { groups_.erase(groupId); }
  // The newest first.
  std::vector<Entry> of(std::int32_t groupId) const;

 private:
  struct Group {
    std::uint64_t next = 0;
    std::map<std::uint64_t, Entry> byAge;
    std::unordered_map<std::uint32_t, std::uint64_t> ages;  // of the files
  };

  std::unordered_map<std::int32_t, Group> groups_;
};

}  // namespace zt_transfers
