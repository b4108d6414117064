#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/failure.h"
#include "engine/file_spec.h"
#include "engine/orphan.h"
#include "engine/transfer_group.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// A group as it is kept.
struct StoredGroup {
  GroupIdentity identity;
  bool paused = false;
  bool marked = false;
};

// A file's standing as it is kept; see kept().
struct StoredState {
  FilePhase phase = FilePhase::kWaiting;  // kWaiting, kCompleted or kFailed; kRemoved for a gap
  std::uint64_t size = 0;                 // bytes
  bool sizeKnown = true;
};

// A group that was found at the start, with its files in the order of their indices.
struct RestoredGroup {
  StoredGroup group;
  std::vector<StoredState> files;
  // What transfers that were begun have left, by the file's index.
  std::vector<std::pair<std::uint32_t, TransferResume>> resumes;
  // Why the last of the failed files failed, in the order of the queue.
  std::vector<std::pair<std::uint32_t, Failure>> failures;
};

// All that was found at the start.
struct RestoredQueue {
  std::int32_t lastGroupId = 0;  // the highest that was ever given
  std::vector<RestoredGroup> groups;
  std::vector<std::pair<OrphanId, Orphan>> orphans;
};

// Keeps what was queued, out of the engine's way: the engine itself holds a few bytes a file.
// Indices of a group count from 0 without gaps.
//
// Ids are always at hand. What else describes a file may lie on a disk: then it is asked for with
// `bring`, and the engine is told when it has come.
//
// Thread: the engine calls it one call at a time; no call waits for a disk.
class IQueueStore {
 public:
  virtual ~IQueueStore() = default;

  // A new group, or what has changed about one.
  virtual void saveGroup(const StoredGroup& group) = 0;
  virtual void removeGroup(std::int32_t groupId) = 0;

  // Keeps the next file of the group, whose fileId must be new to it, or another description of
  // one that is there.
  virtual void append(std::int32_t groupId, const FileSpec& spec, const StoredState& state) = 0;
  virtual void replace(FileRef file, const FileSpec& spec) = 0;
  virtual void setState(FileRef file, const StoredState& state) = 0;
  virtual void remove(FileRef file) = 0;
  // What the next attempt at this file can go on with; nothing begun forgets it. A file that is
  // completed or removed has none any more.
  virtual void saveResume(FileRef file, const TransferResume& resume) = 0;
  // Why the file has failed. It counts as long as the file's state is kFailed.
  virtual void saveFailure(FileRef file, const Failure& failure) = 0;

  // What is to be cleared away, whatever becomes of its file and group, and that this was done.
  virtual void saveOrphan(OrphanId id, const Orphan& orphan) = 0;
  virtual void removeOrphan(OrphanId id) = 0;

  virtual std::string fileId(FileRef file) const = 0;
  // The file with this fileId that was appended last and not removed.
  virtual std::optional<std::uint32_t> find(std::int32_t groupId,
                                            const std::string& fileId) const = 0;

  // Nothing when it has to be brought first.
  virtual std::optional<FileSpec> spec(FileRef file) = 0;
  virtual std::optional<std::string> place(FileRef file) const = 0;
  // Asking twice is harmless. False when it was asked for and cannot be read.
  virtual bool load(FileRef file) = 0;
};

}  // namespace zt_transfers
