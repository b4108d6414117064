#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/failure.h"
#include "engine/file_spec.h"
#include "engine/transfer_group.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// A group as it is stored.
struct StoredGroup {
  GroupIdentity identity;
  bool paused = false;
  bool marked = false;
};

// A file's state as it is stored.
struct StoredState {
  FilePhase phase = FilePhase::kWaiting;  // kWaiting, kCompleted or kFailed; kRemoved for a gap
  std::uint64_t size = 0;                 // bytes
  bool sizeKnown = true;
};

// A group read from the store, with its files in the order of their indices.
struct RestoredGroup {
  StoredGroup group;
  std::vector<StoredState> files;
  // Resume data by the file's index.
  std::vector<std::pair<std::uint32_t, TransferResume>> resumes;
  // Failures of the last failed files, in the order of the queue.
  std::vector<std::pair<std::uint32_t, Failure>> failures;
};

// A queue read from the store.
struct RestoredQueue {
  std::int32_t lastGroupId = 0;  // the highest ever used
  OrphanId lastOrphanId = 0;     // higher ones may be used
  std::vector<RestoredGroup> groups{};
  std::vector<std::pair<OrphanId, Orphan>> orphans{};
};

// Stores the queue; the engine itself holds a few bytes a file. The indices of a group's files
// count from 0 without gaps.
//
// File ids are always in memory. The rest of a file's description may be on disk only: `load`
// requests it, and the engine's specsArrived follows.
//
// Thread: the engine calls it one call at a time; no call waits for a disk.
class IQueueStore {
 public:
  virtual ~IQueueStore() = default;

  // Random bytes that no other queue has.
  virtual std::string salt() const = 0;

  // A new or changed group.
  virtual void saveGroup(const StoredGroup& group) = 0;
  virtual void removeGroup(std::int32_t groupId) = 0;

  // Adds the group's next file, whose fileId must be new to it; replaces the description of a file.
  virtual void append(std::int32_t groupId, const FileSpec& spec, const StoredState& state) = 0;
  virtual void replace(FileRef file, const FileSpec& spec) = 0;
  virtual void setState(FileRef file, const StoredState& state) = 0;
  virtual void remove(FileRef file) = 0;
  // Resume data that was not begun removes the stored data. Completed and removed files have none.
  virtual void saveResume(FileRef file, const TransferResume& resume) = 0;
  // Valid as long as the file's state is kFailed.
  virtual void saveFailure(FileRef file, const Failure& failure) = 0;

  // Orphans are independent of their files and groups.
  virtual void saveOrphan(OrphanId id, const Orphan& orphan) = 0;
  virtual void removeOrphan(OrphanId id) = 0;

  virtual std::string fileId(FileRef file) const = 0;
  // The last file with this fileId that was appended and not removed.
  virtual std::optional<std::uint32_t> find(std::int32_t groupId,
                                            const std::string& fileId) const = 0;

  // Nothing if it must be loaded first.
  virtual std::optional<FileSpec> spec(FileRef file) = 0;
  virtual std::optional<std::string> location(FileRef file) const = 0;
  // May be called repeatedly. False when an earlier request has failed.
  virtual bool load(FileRef file) = 0;
  // The description is not needed soon.
  virtual void release(FileRef file) = 0;
};

}  // namespace zt_transfers
