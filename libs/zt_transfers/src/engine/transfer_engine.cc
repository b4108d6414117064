#include "engine/transfer_engine.h"

#include <utility>

namespace zt_transfers {

CTransferEngine::CTransferEngine(Options options, const Dependencies& dependencies)
    : options_(std::move(options)),
      clock_(dependencies.clock),
      store_(dependencies.store),
      events_(dependencies.events),
      log_(dependencies.log),
      wake_([] {}),
      flush_([] {}),
      table_(options_.activity, clock_, store_, events_, options_.backoff),
      planner_(table_, store_, clock_, options_.backoff) {}

void CTransferEngine::restore(RestoredQueue queue) {
  const CMutexLock lock(mutex_);
  pendingSizes_.clear();
  askForSizes(queue);
  table_.restore(std::move(queue), options_.needsMark);
}

void CTransferEngine::adopt(RestoredQueue queue) {
  {
    const CMutexLock lock(mutex_);
    askForSizes(queue);
    std::vector<std::int32_t> ids;
    for (const RestoredGroup& group : queue.groups) {
      ids.push_back(group.group.identity.id);
    }
    table_.adopt(std::move(queue), options_.needsMark);
    for (const std::int32_t id : ids) {
      announce(*table_.find(id));
    }
  }
  wake_();
}

void CTransferEngine::askForSizes(const RestoredQueue& queue) {
  for (const auto& [kept, files, resumes, failures] : queue.groups) {
    for (std::uint32_t index = 0; index < files.size(); ++index) {
      if (!files[index].sizeKnown && files[index].phase == FilePhase::kWaiting) {
        pendingSizes_.add({kept.identity.id, index});
      }
    }
  }
}

// To the planner and, if it is not completed, to the program.
void CTransferEngine::announce(CTransferGroup& group) {
  planner_.list(group);
  table_.notifyAnew(group);
  table_.limitCompleted(group);
}

std::int32_t CTransferEngine::createGroup(GroupIdentity identity) {
  const CMutexLock lock(mutex_);
  const CTransferGroup* group = table_.create(std::move(identity), options_.needsMark);
  return group == nullptr ? -1 : group->id();
}

template <typename Change>
void CTransferEngine::change(std::int32_t groupId, const Change& change) {
  {
    const CMutexLock lock(mutex_);
    CTransferGroup* group = table_.find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    change(*group);
    reschedule(*group);
  }
  wake_();
}

void CTransferEngine::queueFiles(std::int32_t groupId, const std::vector<FileSpec>& specs) {
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) {
    for (const FileSpec& spec : specs) {
      queueFile(group, spec);
    }
  });
}

void CTransferEngine::queueFile(CTransferGroup& group, const FileSpec& spec) {
  if (const auto known = store_.find(group.id(), spec.fileId)) {
    requeueFile(group, *known, spec);
    return;
  }
  const bool sizeKnown = !options_.statsSources;
  store_.append(group.id(), spec, {.size = spec.size, .sizeKnown = sizeKnown});
  const std::uint32_t index = group.append(spec.size, sizeKnown);
  if (!sizeKnown) {
    pendingSizes_.add({group.id(), index});
  }
}

// A file that waits gets the new description, one that has ended is transferred again. A running
// attempt continues.
void CTransferEngine::requeueFile(CTransferGroup& group, std::uint32_t index,
                                  const FileSpec& spec) {
  const FilePhase phase = group.file(index).phase;
  if (phase == FilePhase::kRunning) {
    return;
  }
  // Another location must not resume the old one's data; a renewed URL may. If the old description
  // is on disk only, the attempt itself checks the partial file.
  if (store_.location({group.id(), index}).value_or(spec.location) != spec.location) {
    table_.discardResume(group, index);
  }
  store_.replace({group.id(), index}, spec);
  group.forgetRetries(index);
  group.unpark(index);
  if (phase == FilePhase::kCompleted || phase == FilePhase::kFailed) {
    table_.move(group, index, FilePhase::kWaiting);
  }
  if (options_.statsSources) {
    pendingSizes_.add({group.id(), index});
  } else {
    table_.setSize(group, index, spec.size);
  }
}

void CTransferEngine::dequeueFiles(std::int32_t groupId, const std::vector<std::string>& fileIds) {
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) {
    for (const std::string& fileId : fileIds) {
      if (const auto index = store_.find(groupId, fileId)) {
        table_.remove(group, *index);
      }
    }
  });
}

void CTransferEngine::setMarked(std::int32_t groupId, bool marked) {
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) {
    group.setMarked(marked);
    table_.save(group);
  });
}

void CTransferEngine::pauseGroup(std::int32_t groupId) {
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) { table_.pause(group); });
}

void CTransferEngine::resumeGroup(std::int32_t groupId) {
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) { table_.resume(group); });
}

void CTransferEngine::cancelGroup(std::int32_t groupId) {
  bool wasCompleted = false;
  change(groupId, [&](CTransferGroup& group) REQUIRES(mutex_) {
    wasCompleted = group.completed();
    table_.cancel(group);
  });
  if (wasCompleted) {
    const CMutexLock lock(mutex_);
    table_.forget(groupId);
  }
}

void CTransferEngine::setSettings(const Settings& settings) {
  {
    const CMutexLock lock(mutex_);
    planner_.setSettings(settings);
  }
  wake_();
}

void CTransferEngine::start() {
  {
    const CMutexLock lock(mutex_);
    planner_.start();
    table_.eventThrottle().setRunning(true);
    table_.forgetCancelled();
    for (const auto& [id, group] : table_.groups()) {
      announce(*group);
    }
  }
  wake_();
}

void CTransferEngine::stop() {
  const CMutexLock lock(mutex_);
  planner_.stop();
  table_.eventThrottle().setRunning(false);
  for (const auto& [id, group] : table_.groups()) {
    table_.stopAttempts(*group, FilePhase::kWaiting, true);
    for (const std::uint32_t index : group->backingOff()) {
      group->changePhase(index, FilePhase::kWaiting);
    }
    group->unparkAll();
    group->scheduling = {};
  }
  table_.origins().clear();
  table_.dropStops();
  table_.cleanups().stop();
}

CTransferEngine::Work CTransferEngine::takeWork() {
  const bool congested = events_.congested();
  Work work;
  {
    const CMutexLock lock(mutex_);
    work = planner_.takeWork(congested);
  }
  for (const std::string& failure : work.failures) {
    log_.error(failure);
  }
  return work;
}

void CTransferEngine::onAttemptsDone(const std::vector<AttemptEnd>& ends) {
  std::vector<std::pair<ILog::Priority, std::string>> lines;
  {
    const CMutexLock lock(mutex_);
    CTransferGroup* touched = nullptr;
    for (const auto& [id, outcome] : ends) {
      RunningAttempt* attempt = table_.attempts().find(id);
      if (attempt == nullptr) {
        continue;  // stopped in the meantime
      }
      const FileRef file = attempt->file;
      const COriginTable::Ticket ticket = attempt->ticket;
      CTransferGroup& group = *table_.find(file.groupId);
      if (touched != nullptr && touched != &group) {
        reschedule(*touched);
      }
      touched = &group;
      const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
      table_.countProgress(*attempt, group, clock_.now());
      table_.end(*attempt, group,
                 done ? CTransferTable::Resume::kDiscard : CTransferTable::Resume::kKeep);
      lines.emplace_back(done ? ILog::Priority::kInformation : ILog::Priority::kWarning,
                         planner_.applyOutcome(group, file.index, ticket, outcome));
    }
    if (touched != nullptr) {
      reschedule(*touched);
    }
  }
  for (const auto& [priority, line] : lines) {
    log_.write(priority, line);
  }
  wake_();  // a retry can be due before anything else wakes the network thread
}

void CTransferEngine::reschedule(CTransferGroup& group) {
  planner_.list(group);
  table_.notify(group);
  table_.limitCompleted(group);
}

bool CTransferEngine::onAttemptCheckpoint(AttemptId id) {
  const CMutexLock lock(mutex_);
  return saveResume(id);
}

// False when it was stopped.
bool CTransferEngine::saveResume(AttemptId id) {
  RunningAttempt* attempt = table_.attempts().find(id);
  if (attempt != nullptr) {
    table_.saveResume(*attempt);
  }
  return attempt != nullptr;
}

bool CTransferEngine::onAttemptFinalizing(AttemptId id) {
  {
    const CMutexLock lock(mutex_);
    RunningAttempt* attempt = table_.attempts().find(id);
    if (attempt == nullptr) {
      return false;
    }
    table_.beginFinalization(*attempt);
  }
  wake_();
  return true;
}

void CTransferEngine::keepDurably(const std::vector<AttemptId>& attempts) {
  {
    const CMutexLock lock(mutex_);
    for (const AttemptId attemptId : attempts) {
      saveResume(attemptId);
    }
  }
  flush_();
}

void CTransferEngine::onOrphaned(Orphan orphan) {
  {
    const CMutexLock lock(mutex_);
    table_.cleanups().addOnce(std::move(orphan));
  }
  wake_();
}

void CTransferEngine::onCleanedUp(OrphanId id, const AttemptOutcome& outcome) {
  const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
  std::string message;
  {
    const CMutexLock lock(mutex_);
    message = table_.cleanups().applyOutcome(id, outcome);
  }
  if (!message.empty()) {
    log_.write(done ? ILog::Priority::kInformation : ILog::Priority::kWarning, message);
  }
  wake_();
}

// `mayBegin`: progress has shown that more files may be begun.
bool CTransferEngine::foldAll(bool& mayBegin) {
  const CMutexLock lock(mutex_);
  const TimePoint now = clock_.now();
  for (auto& [id, attempt] : table_.attempts()) {
    CTransferGroup& group = *table_.find(attempt.file.groupId);
    if (table_.countProgress(attempt, group, now)) {
      mayBegin = planner_.applyProgress(attempt, group, now) || mayBegin;
      table_.notify(group);
    }
    if (attempt.counted != attempt.reported &&
        now - attempt.reportedAt >= CEventThrottle::kInterval) {
      attempt.reported = attempt.counted;
      attempt.reportedAt = now;
      table_.eventThrottle().file(table_.fileState(group, attempt.file.index));
    }
  }
  table_.eventThrottle().notifyDue(
      [this](std::int32_t groupId) -> const CTransferGroup* {
        mutex_.assertHeld();
        return table_.find(groupId);
      },
      now);
  return !table_.attempts().empty() || table_.eventThrottle().hasDue();
}

std::vector<CTransferEngine::PendingSize> CTransferEngine::takePendingSizes(std::size_t limit) {
  const CMutexLock lock(mutex_);
  return pendingSizes_.take(limit, store_, [this](FileRef file) REQUIRES(mutex_) {
    const CTransferGroup* group = table_.find(file.groupId);
    return group != nullptr && !group->cancelled() &&
           group->file(file.index).phase == FilePhase::kWaiting;
  });
}

bool CTransferEngine::hasPendingSizes() const {
  const CMutexLock lock(mutex_);
  return pendingSizes_.ready();
}

void CTransferEngine::applySizes(const std::vector<FileSize>& sizes) {
  const CMutexLock lock(mutex_);
  CTransferGroup* touched = nullptr;
  for (const auto& [file, size] : sizes) {
    CTransferGroup* group = table_.find(file.groupId);
    if (touched != nullptr && touched != group) {
      table_.notify(*touched);
    }
    touched = group;
    // The attempt of a file that was begun meanwhile reports the size itself.
    if (group != nullptr && !group->cancelled() &&
        group->file(file.index).phase == FilePhase::kWaiting) {
      table_.setSize(*group, file.index, size);
    }
  }
  if (touched != nullptr) {
    table_.notify(*touched);
  }
}

void CTransferEngine::specsArrived(std::int32_t groupId) {
  {
    const CMutexLock lock(mutex_);
    pendingSizes_.onSpecsArrived();
    CTransferGroup* group = table_.find(groupId);
    if (group != nullptr && !group->cancelled()) {
      planner_.list(*group);
    }
  }
  wake_();
}

}  // namespace zt_transfers
