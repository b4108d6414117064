#include "store/queue_cache.h"

#include <algorithm>

#include "store/packed_resume.h"

namespace zt_transfers {

using Kind = QueueChange::Kind;

void CQueueCache::record(Listener listener) {
  const CMutexLock lock(mutex_);
  listener_ = std::move(listener);
}

void CQueueCache::stopRecording() {
  const CMutexLock lock(mutex_);
  listener_.reset();
  changes_.clear();
  changedGroups_.clear();
  changedResumes_.clear();
  changedFailures_.clear();
  changedOrphans_.clear();
  requests_.clear();
}

CFileTable* CQueueCache::table(std::int32_t groupId) const {
  const auto found = tables_.find(groupId);
  return found == tables_.end() ? nullptr : found->second.get();
}

void CQueueCache::note(Kind kind, FileRef file, const StoredState& state) {
  if (listener_) {
    changes_.push_back({kind, file, state});
    ++noted_;
    if (changes_.size() == 1) {
      listener_->changed();
    }
  }
}

void CQueueCache::saveGroup(const StoredGroup& group) {
  const CMutexLock lock(mutex_);
  const std::int32_t id = group.identity.id;
  std::unique_ptr<CFileTable>& files = tables_[id];
  if (!files) {
    files = std::make_unique<CFileTable>(held_);
  }
  if (listener_) {
    changedGroups_[id] = group;
    note(Kind::kGroup, {id, 0});
  }
}

void CQueueCache::removeGroup(std::int32_t groupId) {
  std::unique_ptr<CFileTable> removed;  // destroyed without the lock, as that takes time
  const CMutexLock lock(mutex_);
  const auto found = tables_.find(groupId);
  if (found != tables_.end()) {
    removed = std::move(found->second);
    removed->leave();
    tables_.erase(found);
    resumes_.erase(resumes_.lower_bound({groupId, 0}), resumes_.lower_bound({groupId + 1, 0}));
    note(Kind::kGroupRemoved, {groupId, 0});
  }
}

void CQueueCache::append(std::int32_t groupId, const FileSpec& spec, const StoredState& state) {
  CPackedSpec packed(spec);
  const CMutexLock lock(mutex_);
  CFileTable& files = *tables_.at(groupId);
  files.append(spec.fileId, std::move(packed));
  note(Kind::kFile, {groupId, files.size() - 1}, state);
}

void CQueueCache::replace(FileRef file, const FileSpec& spec) {
  CPackedSpec packed(spec);
  const CMutexLock lock(mutex_);
  tables_.at(file.groupId)->replace(file.index, std::move(packed));
  note(Kind::kSpec, file);
}

void CQueueCache::setState(FileRef file, const StoredState& state) {
  const CMutexLock lock(mutex_);
  CFileTable& files = *tables_.at(file.groupId);
  if (state.phase == FilePhase::kCompleted) {
    files.forget(file.index);
  } else if (state.phase == FilePhase::kFailed || !files.soon(file.index)) {
    files.release(file.index);
  }
  note(Kind::kState, file, state);
  if (state.phase == FilePhase::kCompleted) {
    noteResume(file, {});
  }
}

void CQueueCache::remove(FileRef file) {
  const CMutexLock lock(mutex_);
  tables_.at(file.groupId)->remove(file.index);
  resumes_.erase({file.groupId, file.index});
  note(Kind::kFileRemoved, file);
}

void CQueueCache::saveResume(FileRef file, const TransferResume& resume) {
  const CMutexLock lock(mutex_);
  noteResume(file, resume.begun() ? packed(resume) : std::string());
}

void CQueueCache::noteResume(FileRef file, std::string packed) {
  const Key key{file.groupId, file.index};
  const bool changed = packed.empty() ? resumes_.erase(key) != 0 : (resumes_.insert(key), true);
  if (changed && listener_) {
    changedResumes_[key] = std::move(packed);
    note(Kind::kResume, file);
  }
}

void CQueueCache::saveFailure(FileRef file, const Failure& failure) {
  const CMutexLock lock(mutex_);
  if (listener_) {
    changedFailures_[{file.groupId, file.index}] = failure;
    note(Kind::kFailure, file);
  }
}

void CQueueCache::saveOrphan(OrphanId id, const Orphan& orphan) {
  noteOrphan(id, packed(orphan));
}

void CQueueCache::removeOrphan(OrphanId id) {
  noteOrphan(id, {});
}

void CQueueCache::noteOrphan(OrphanId id, std::string packed) {
  const CMutexLock lock(mutex_);
  if (listener_) {
    changedOrphans_[id] = std::move(packed);
    note(Kind::kOrphan, {0, id});
  }
}

std::string CQueueCache::fileId(FileRef file) const {
  const CMutexLock lock(mutex_);
  return std::string(tables_.at(file.groupId)->fileId(file.index));
}

std::optional<std::uint32_t> CQueueCache::find(std::int32_t groupId,
                                               const std::string& fileId) const {
  const CMutexLock lock(mutex_);
  const CFileTable* files = table(groupId);
  return files == nullptr ? std::nullopt : files->find(fileId);
}

std::optional<FileSpec> CQueueCache::spec(FileRef file) {
  const CMutexLock lock(mutex_);
  CFileTable& files = *tables_.at(file.groupId);
  auto spec = files.spec(file.index).unpacked();
  if (spec) {
    spec->fileId = files.fileId(file.index);
    if (const auto from = listener_ ? files.readAhead(file.index) : std::nullopt) {
      request({file.groupId, *from, *from + CFileTable::kWindow});
    }
  }
  return spec;
}

std::optional<std::string> CQueueCache::location(FileRef file) const {
  const CMutexLock lock(mutex_);
  return tables_.at(file.groupId)->spec(file.index).location();
}

bool CQueueCache::load(FileRef file) {
  const CMutexLock lock(mutex_);
  if (!listener_) {
    return false;
  }
  CFileTable& files = *tables_.at(file.groupId);
  switch (files.ask(file.index)) {
    case CFileTable::Coming::kUnreadable:
      return false;
    case CFileTable::Coming::kAlready:
      return true;
    case CFileTable::Coming::kAsked:
      break;
  }
  // Loads the following files, too; fewer when much is in memory.
  const std::uint32_t count = held_ < kMaxHeld ? CFileTable::kWindow : CFileTable::kWindow / 16;
  files.setAhead(file.index + count);
  request({file.groupId, file.index, file.index + count});
  return true;
}

void CQueueCache::release(FileRef file) {
  const CMutexLock lock(mutex_);
  tables_.at(file.groupId)->release(file.index);
}

void CQueueCache::request(const Range& range) {
  requests_.push_back(range);
  listener_->requested();
}

void CQueueCache::clear() {
  const CMutexLock lock(mutex_);
  tables_.clear();
  resumes_.clear();
}

void CQueueCache::dropGroup(std::int32_t groupId) {
  const CMutexLock lock(mutex_);
  tables_.erase(groupId);
  resumes_.erase(resumes_.lower_bound({groupId, 0}), resumes_.lower_bound({groupId + 1, 0}));
}

void CQueueCache::restoreGroup(std::int32_t groupId) {
  const CMutexLock lock(mutex_);
  auto files = std::make_unique<CFileTable>(held_);
  files->setAhead(0);
  tables_[groupId] = std::move(files);
}

void CQueueCache::restoreFile(FileRef file, std::string_view fileId) {
  const CMutexLock lock(mutex_);
  CFileTable& files = *tables_.at(file.groupId);
  while (files.size() < file.index) {
    files.restoreGap();
  }
  files.restore(fileId);
}

void CQueueCache::restoreResume(FileRef file) {
  const CMutexLock lock(mutex_);
  resumes_.insert({file.groupId, file.index});
}

std::size_t CQueueCache::changesWaiting() const {
  const CMutexLock lock(mutex_);
  return changes_.size();
}

std::uint64_t CQueueCache::changesNoted() const {
  const CMutexLock lock(mutex_);
  return noted_;
}

std::uint64_t CQueueCache::changesTaken() const {
  const CMutexLock lock(mutex_);
  return noted_ - changes_.size();
}

QueueBatch CQueueCache::collect(std::size_t max) {
  QueueBatch batch;
  batch.writes.reserve(max);
  for (std::size_t done = 0; done < max; done += kAtOnce) {
    const CMutexLock lock(mutex_);
    collectSome(batch, std::min(max - done, kAtOnce));
  }
  return batch;
}

void CQueueCache::collectSome(QueueBatch& batch, std::size_t max) {
  for (std::size_t done = 0; done < max && !changes_.empty(); ++done) {
    QueueWrite write{.change = changes_.front()};
    changes_.pop_front();
    if (fillIn(write, batch)) {
      batch.writes.push_back(write);
    }
  }
}

// False when there is nothing left to write.
bool CQueueCache::fillIn(QueueWrite& write, QueueBatch& batch) {
  const auto [kind, file, state] = write.change;
  CFileTable* files = table(file.groupId);
  if (kind == Kind::kGroupRemoved) {
    return true;
  }
  if (kind == Kind::kGroup) {
    auto changed = changedGroups_.extract(file.groupId);
    if (changed) {
      write.group = &batch.groups.emplace_back(std::move(changed.mapped()));
    }
    return static_cast<bool>(changed);  // if not, it was written with an earlier change
  }
  if (kind == Kind::kResume) {
    const auto changed = changedResumes_.extract({file.groupId, file.index});
    if (changed) {
      write.resume = CTextArena::at(batch.texts.add(changed.mapped()));
    }
    return changed && files != nullptr;
  }
  if (kind == Kind::kFailure) {
    auto changed = changedFailures_.extract({file.groupId, file.index});
    if (changed) {
      write.failure = &batch.failures.emplace_back(std::move(changed.mapped()));
    }
    return changed && files != nullptr;
  }
  if (kind == Kind::kOrphan) {
    const auto changed = changedOrphans_.extract(file.index);
    if (changed) {
      write.orphan = CTextArena::at(batch.texts.add(changed.mapped()));
    }
    return static_cast<bool>(changed);
  }
  if (files == nullptr) {
    return false;  // gone with its group
  }
  // A file that was queued again meanwhile may have its new description on disk already.
  write.over = state.phase == FilePhase::kCompleted && files->forgotten(file.index);
  if (kind == Kind::kFile) {
    write.fileId = CTextArena::at(batch.texts.add(files->fileId(file.index)));
  }
  if ((kind == Kind::kFile || kind == Kind::kSpec) && files->beginWrite(file.index)) {
    write.spec = CTextArena::at(batch.texts.add(files->spec(file.index).bytes()));
  }
  return true;
}

void CQueueCache::written(const QueueBatch& batch) {
  std::vector<CPackedSpec> released;  // freed without the lock
  for (std::size_t done = 0; done < batch.writes.size(); done += kAtOnce) {
    const CMutexLock lock(mutex_);
    const std::size_t end = std::min(done + kAtOnce, batch.writes.size());
    for (std::size_t at = done; at < end; ++at) {
      const FileRef file = batch.writes[at].change.file;
      CFileTable* files = table(file.groupId);
      if (files == nullptr || batch.writes[at].spec.empty() || !files->endWrite(file.index)) {
        continue;
      }
      if (!files->soon(file.index) || held_ > kMaxHeld) {
        released.push_back(files->release(file.index));
      }
    }
  }
}

void CQueueCache::putBack(const QueueBatch& batch) {
  const CMutexLock lock(mutex_);
  for (auto write = batch.writes.rbegin(); write != batch.writes.rend(); ++write) {
    const FileRef file = write->change.file;
    // It may have changed again.
    if (write->group != nullptr) {
      changedGroups_.emplace(file.groupId, *write->group);
    }
    if (write->change.kind == Kind::kResume) {
      changedResumes_.emplace(Key{file.groupId, file.index}, write->resume);
    }
    if (write->change.kind == Kind::kOrphan) {
      changedOrphans_.emplace(file.index, write->orphan);
    }
    if (write->failure != nullptr) {
      changedFailures_.emplace(Key{file.groupId, file.index}, *write->failure);
    }
    CFileTable* files = table(file.groupId);
    if (files != nullptr && !write->spec.empty()) {
      files->failWrite(file.index);
    }
    changes_.push_front(write->change);
  }
}

std::optional<CQueueCache::Range> CQueueCache::takeRequest() {
  const CMutexLock lock(mutex_);
  if (requests_.empty()) {
    return std::nullopt;
  }
  const Range range = requests_.front();
  requests_.pop_front();
  return range;
}

void CQueueCache::arrive(FileRef file, std::string_view spec) {
  const CMutexLock lock(mutex_);
  CFileTable* files = table(file.groupId);
  if (files != nullptr && file.index < files->size()) {
    files->arrive(file.index, spec);
  }
}

void CQueueCache::endArrival(const Range& range) {
  const CMutexLock lock(mutex_);
  if (CFileTable* files = table(range.groupId)) {
    files->endArrival(range.from, range.to);
  }
}

}  // namespace zt_transfers
