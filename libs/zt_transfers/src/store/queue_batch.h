#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "engine/queue_store.h"
#include "store/text_arena.h"

namespace zt_transfers {

// Something about the queue that is to be written.
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
    kOrphan,  // new or gone
  };

  Kind kind = Kind::kGroup;
  FileRef file;       // only its group for kGroup and kGroupRemoved; its index is the id of kOrphan
  StoredState state;  // kFile and kState
};

// A change with what is to be written.
struct QueueWrite {
  QueueChange change;
  const StoredGroup* group = nullptr;  // kGroup
  bool over = false;                   // kState: nothing else about the file is needed
  std::string_view fileId{};           // kFile
  std::string_view spec{};             // kFile and kSpec; empty: none any more
  std::string_view resume{};           // kResume; empty: none any more
  const Failure* failure = nullptr;    // kFailure
  std::string_view orphan{};           // kOrphan; empty: gone
};

// Changes in their order, which become durable together.
struct QueueBatch {
  std::vector<QueueWrite> writes;
  // What they point to.
  std::deque<StoredGroup> groups;
  std::deque<Failure> failures;
  CTextArena texts;
};

}  // namespace zt_transfers
