#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "engine/queue_store.h"
#include "store/text_arena.h"

namespace zt_transfers {

// A change of the queue.
struct QueueChange {
  enum class Kind : std::uint8_t {
    kGroup,         // new or changed
    kGroupRemoved,  // with all its files
    kFile,          // new, with its description
    kSpec,          // another description
    kState,
    kResume,
    kFailure,
    kFileRemoved,
    kOrphan,  // new or removed
  };

  Kind kind = Kind::kGroup;
  FileRef file;       // only its group for kGroup and kGroupRemoved; its index is the id of kOrphan
  StoredState state;  // kFile and kState
};

// A change with the data to be written.
struct QueueWrite {
  QueueChange change;
  const StoredGroup* group = nullptr;  // kGroup
  bool over = false;                   // kState: the description is not needed any more
  std::string_view fileId{};           // kFile
  std::string_view spec{};             // kFile and kSpec; empty: removed
  std::string_view resume{};           // kResume; empty: removed
  const Failure* failure = nullptr;    // kFailure
  std::string_view orphan{};           // kOrphan; empty: removed
};

// Changes in their order, written in one transaction.
struct QueueBatch {
  std::vector<QueueWrite> writes;
  // The data that `writes` points to.
  std::deque<StoredGroup> groups;
  std::deque<Failure> failures;
  CTextArena texts;
};

}  // namespace zt_transfers
