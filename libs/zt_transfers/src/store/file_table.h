#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

#include "store/id_index.h"
#include "store/packed_spec.h"
#include "store/text_arena.h"

namespace zt_transfers {

// One group's files in memory: the ids of all, and the descriptions of those that are not yet on
// disk or will be begun soon.
//
// Thread: none of its own; CQueueCache guards it.
class CFileTable {
 public:
  // Files whose descriptions are loaded at once, and are kept after they were queued.
  static constexpr std::uint32_t kWindow = 256;

  // `held` counts the written descriptions in memory, of all tables.
  explicit CFileTable(std::size_t& held) : held_(held) {}
  ~CFileTable() { leave(); }
  CFileTable(const CFileTable&) = delete;
  CFileTable& operator=(const CFileTable&) = delete;

  // Subtracts this table from `held`, so that it may be destroyed without the lock.
  void leave() { held_ -= std::exchange(heldHere_, 0); }

  std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }
  void append(std::string_view fileId, CPackedSpec spec);
  // Adds a file that is on disk.
  void restore(std::string_view fileId);
  // Adds an entry for a removed file.
  void restoreGap() { entries_.emplace_back(); }
  void replace(std::uint32_t at, CPackedSpec spec);
  void remove(std::uint32_t at);

  std::string_view fileId(std::uint32_t at) const;
  std::optional<std::uint32_t> find(std::string_view fileId) const { return index_.find(fileId); }
  // Empty when the description is not in memory.
  const CPackedSpec& spec(std::uint32_t at) const { return entries_.at(at).spec; }

  // The description is about to be written. False when there is none to write.
  bool beginWrite(std::uint32_t at);
  // The description was written. True when it is still the current one.
  bool endWrite(std::uint32_t at);
  // Writing failed; the description must be written again.
  void failWrite(std::uint32_t at);
  // Removes and returns a written description; an empty one when it will be needed soon.
  CPackedSpec release(std::uint32_t at);
  // Drops a description that is not needed any more.
  void forget(std::uint32_t at);
  bool forgotten(std::uint32_t at) const { return entries_.at(at).forgotten; }

  enum class Coming { kAsked, kAlready, kUnreadable };
  Coming ask(std::uint32_t at);
  // Takes a description that was read, unless a newer one is in memory or it is malformed.
  void arrive(std::uint32_t at, std::string_view bytes);
  // The range was read. Files without a description are unreadable.
  void endArrival(std::uint32_t from, std::uint32_t to);

  // The range to read ahead when this file is begun; nothing when enough is in memory.
  std::optional<std::uint32_t> readAhead(std::uint32_t at);
  bool soon(std::uint32_t at) const { return at < ahead_; }
  void setAhead(std::uint32_t to) { ahead_ = to; }

 private:
  struct Entry {
    CPackedSpec spec;
    const char* fileId = nullptr;  // in the arena; null for a gap
    bool unwritten = false;        // the description is not on disk yet
    bool durable = false;          // the description in memory is also on disk
    bool coming = false;           // it was requested
    bool unreadable = false;       // the request failed
    bool forgotten = false;
  };
  struct IdOf {
    const std::deque<Entry>& entries;
    std::string_view operator()(std::uint32_t index) const {
      return CTextArena::at(entries[index].fileId);
    }
  };

  void setDurable(Entry& entry, bool durable);

  std::size_t& held_;
  std::size_t heldHere_ = 0;
  CTextArena ids_;
  std::deque<Entry> entries_;
  CIdIndex<IdOf> index_{IdOf{entries_}};
  std::uint32_t ahead_ = kWindow;  // descriptions before it were requested
};

}  // namespace zt_transfers
