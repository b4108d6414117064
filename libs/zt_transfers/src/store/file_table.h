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

// The files of one group as they lie in memory: every file's id, and the descriptions of those
// that are not written to disk yet or are to be begun soon.
//
// Thread: none of its own; CQueueCache guards it.
class CFileTable {
 public:
  // How much is brought at once, and kept of what has just been queued.
  static constexpr std::uint32_t kWindow = 256;

  // `held` counts the descriptions of all tables that are in memory although they are on disk.
  explicit CFileTable(std::size_t& held) : held_(held) {}
  ~CFileTable() { leave(); }
  CFileTable(const CFileTable&) = delete;
  CFileTable& operator=(const CFileTable&) = delete;

  // Takes this table's share out of the count, so that it may then be destroyed unguarded.
  void leave() { held_ -= std::exchange(heldHere_, 0); }

  std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }
  void append(std::string_view fileId, CPackedSpec spec);
  // A file that is on disk already.
  void restore(std::string_view fileId);
  // In place of a file that was removed.
  void restoreGap() { entries_.emplace_back(); }
  void replace(std::uint32_t at, CPackedSpec spec);
  void remove(std::uint32_t at);

  std::string_view fileId(std::uint32_t at) const;
  std::optional<std::uint32_t> find(std::string_view fileId) const { return index_.find(fileId); }
  // Empty when it is not in memory.
  const CPackedSpec& spec(std::uint32_t at) const { return entries_.at(at).spec; }

  // The description is about to be written. False when there is nothing (left) to be written.
  bool beginWrite(std::uint32_t at);
  // It is on disk. True when it is still the current one.
  bool endWrite(std::uint32_t at);
  // It is not, and has to be written again.
  void failWrite(std::uint32_t at);
  // Gives a description away that is on disk; an empty one when it is needed here.
  CPackedSpec release(std::uint32_t at);
  // It is needed no longer, neither here nor on disk, until it is replaced.
  void forget(std::uint32_t at);
  bool forgotten(std::uint32_t at) const { return entries_.at(at).forgotten; }

  enum class Coming { kAsked, kAlready, kUnreadable };
  Coming ask(std::uint32_t at);
  // What was read. It is left out when something newer is in memory, or when it makes no sense.
  void arrive(std::uint32_t at, std::string_view bytes);
  // Nothing more arrives of what was asked for in this range: what has not come cannot be read.
  void endArrival(std::uint32_t from, std::uint32_t to);

  // Where to read on when this file is begun, so that the next ones are there in time; nothing
  // when enough is there.
  std::optional<std::uint32_t> readAhead(std::uint32_t at);
  bool soon(std::uint32_t at) const { return at < ahead_; }
  void setAhead(std::uint32_t to) { ahead_ = to; }

 private:
  struct Entry {
    CPackedSpec spec;
    const char* fileId = nullptr;  // in the arena; null for a gap
    bool unwritten = false;        // the description has yet to be written
    bool durable = false;          // the description in memory is also on disk
    bool coming = false;           // it was asked for
    bool unreadable = false;       // and did not come
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
  std::uint32_t ahead_ =
      kWindow;  // files before it are, or were, brought in the order of the queue
};

}  // namespace zt_transfers
