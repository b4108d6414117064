#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "engine/queue_store.h"
#include "store/file_table.h"
#include "store/queue_batch.h"
#include "store/salt.h"

namespace zt_transfers {

// The queue in memory, with the changes to be written and the descriptions to be read. It does no
// input or output itself: a CQueueWriter takes changes and requests from it. Without a writer the
// whole queue stays in memory.
//
// Thread: any.
class CQueueCache : public IQueueStore {
 public:
  // Files whose descriptions are to be read.
  struct Range {
    std::int32_t groupId = 0;
    std::uint32_t from = 0;
    std::uint32_t to = 0;  // the first one not to be read
  };

  CQueueCache() = default;

  // Called from any thread, under the store's lock.
  struct Listener {
    std::function<void()> changed;    // there are changes
    std::function<void()> requested;  // there are requests
  };

  // From here on changes are collected for a writer.
  void record(Listener listener);
  void stopRecording();

  // For the engine.
  std::string salt() const override {
    const CMutexLock lock(mutex_);
    return salt_;
  }
  void saveGroup(const StoredGroup& group) override;
  void removeGroup(std::int32_t groupId) override;
  void append(std::int32_t groupId, const FileSpec& spec, const StoredState& state) override;
  void replace(FileRef file, const FileSpec& spec) override;
  void setState(FileRef file, const StoredState& state) override;
  void remove(FileRef file) override;
  void saveResume(FileRef file, const TransferResume& resume) override;
  void saveFailure(FileRef file, const Failure& failure) override;
  void saveOrphan(OrphanId id, const Orphan& orphan) override;
  void removeOrphan(OrphanId id) override;
  std::string fileId(FileRef file) const override;
  std::optional<std::uint32_t> find(std::int32_t groupId, const std::string& fileId) const override;
  std::optional<FileSpec> spec(FileRef file) override;
  std::optional<std::string> location(FileRef file) const override;
  bool load(FileRef file) override;
  void release(FileRef file) override;

  // For reading the stored queue: each group with its files in the order of their indices.
  void clear();
  void restoreSalt(std::string salt) {
    const CMutexLock lock(mutex_);
    salt_ = std::move(salt);
  }
  void dropGroup(std::int32_t groupId);
  void restoreGroup(std::int32_t groupId);
  void restoreFile(FileRef file, std::string_view fileId);
  void restoreResume(FileRef file);

  // For the writer.
  std::size_t changesWaiting() const;
  // The number of all changes ever, and of those that a batch has taken.
  std::uint64_t changesNoted() const;
  std::uint64_t changesTaken() const;
  // The oldest changes, about `max` of them, with their data.
  QueueBatch collect(std::size_t max);
  // The batch is durable. Frees descriptions that are not needed soon.
  void written(const QueueBatch& batch);
  // The batch could not be written; its changes come first again.
  void putBack(const QueueBatch& batch);
  std::optional<Range> takeRequest();
  void arrive(FileRef file, std::string_view spec);
  void endArrival(const Range& range);

 private:
  // Written descriptions in memory, of all groups together.
  static constexpr std::size_t kMaxHeld = 8192;

  using Key = std::pair<std::int32_t, std::uint32_t>;  // of a file

  // Changes that the writer handles before it releases the lock in between.
  static constexpr std::size_t kAtOnce = 256;

  CFileTable* table(std::int32_t groupId) const REQUIRES(mutex_);
  void noteResume(FileRef file, std::string packed) REQUIRES(mutex_);
  void noteOrphan(OrphanId id, std::string packed);
  void note(QueueChange::Kind kind, FileRef file, const StoredState& state = {}) REQUIRES(mutex_);
  void request(const Range& range) REQUIRES(mutex_);
  void collectSome(QueueBatch& batch, std::size_t max) REQUIRES(mutex_);
  bool fillIn(QueueWrite& write, QueueBatch& batch) REQUIRES(mutex_);

  mutable CMutex mutex_;
  std::string salt_ GUARDED_BY(mutex_) = randomSalt();  // until the stored one is known
  std::optional<Listener> listener_ GUARDED_BY(mutex_);
  std::size_t held_ GUARDED_BY(mutex_) = 0;
  std::unordered_map<std::int32_t, std::unique_ptr<CFileTable>> tables_ GUARDED_BY(mutex_);
  std::unordered_map<std::int32_t, StoredGroup> changedGroups_
      GUARDED_BY(mutex_);                                         // not written yet
  std::map<Key, std::string> changedResumes_ GUARDED_BY(mutex_);  // not written yet; empty: removed
  std::map<Key, Failure> changedFailures_ GUARDED_BY(mutex_);     // not written yet
  std::map<OrphanId, std::string> changedOrphans_
      GUARDED_BY(mutex_);                     // not written yet; empty: removed
  std::set<Key> resumes_ GUARDED_BY(mutex_);  // files with stored resume data
  std::deque<QueueChange> changes_ GUARDED_BY(mutex_);
  std::uint64_t noted_ GUARDED_BY(mutex_) = 0;
  std::deque<Range> requests_ GUARDED_BY(mutex_);
};

}  // namespace zt_transfers
