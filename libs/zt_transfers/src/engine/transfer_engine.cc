#include "engine/transfer_engine.h"

#include <utility>

namespace zt_transfers {

CTransferEngine::CTransferEngine(Options options, const Surroundings& surroundings)
    : options_(std::move(options)),
      clock_(surroundings.clock),
      store_(surroundings.store),
      events_(surroundings.events),
      log_(surroundings.log),
      wake_([] {}),
      settle_([] {}),
      book_(options_.activity, clock_, store_, events_, options_.backoff),
      planner_(book_, store_, clock_, options_.backoff) {}

void CTransferEngine::restore(RestoredQueue queue) {
  const std::lock_guard lock(mutex_);
  unmeasured_.clear();
  for (const auto& [kept, files, resumes, failures] : queue.groups) {
    for (std::uint32_t index = 0; index < files.size(); ++index) {
      if (!files[index].sizeKnown && files[index].phase == FilePhase::kWaiting) {
        unmeasured_.add({kept.identity.id, index});
      }
    }
  }
  book_.restore(std::move(queue), options_.needsMark);
}

std::int32_t CTransferEngine::createGroup(GroupIdentity identity) {
  const std::lock_guard lock(mutex_);
  const CTransferGroup* group = book_.create(std::move(identity), options_.needsMark);
  return group == nullptr ? -1 : group->id();
}

std::vector<GroupSnapshot> CTransferEngine::groups() const {
  const std::lock_guard lock(mutex_);
  const TimePoint now = clock_.now();
  std::vector<GroupSnapshot> shots;
  shots.reserve(book_.groups().size());
  for (const auto& [id, group] : book_.groups()) {
    shots.push_back(group->snapshot(planner_.running(), now));
  }
  return shots;
}

std::optional<GroupSnapshot> CTransferEngine::group(std::int32_t groupId) const {
  const std::lock_guard lock(mutex_);
  const auto found = book_.groups().find(groupId);
  if (found == book_.groups().end()) {
    return std::nullopt;
  }
  return found->second->snapshot(planner_.running(), clock_.now());
}

std::optional<CTransferEngine::GroupReport> CTransferEngine::report(std::int32_t groupId) const {
  const std::lock_guard lock(mutex_);
  const auto found = book_.groups().find(groupId);
  if (found == book_.groups().end() || found->second->cancelled()) {
    return std::nullopt;
  }
  const CTransferGroup& group = *found->second;
  GroupReport report{.shot = group.snapshot(planner_.running(), clock_.now()),
                     .token = group.identity().token};
  if (!report.shot.waitingFor.empty()) {
    report.waitingFor = group.pace.waitingFor;
  }
  report.filesFailed = group.count(FilePhase::kFailed);
  for (auto& [index, failure] : book_.failures().of(groupId)) {
    report.failures.push_back({store_.fileId({groupId, index}), std::move(failure)});
  }
  return report;
}

void CTransferEngine::change(std::int32_t groupId,
                             const std::function<void(CTransferGroup&)>& change) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = book_.find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    change(*group);
    goOn(*group);
  }
  wake_();
}

void CTransferEngine::queueFiles(std::int32_t groupId, const std::vector<FileSpec>& specs) {
  change(groupId, [&](CTransferGroup& group) {
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
  const bool sizeKnown = !options_.measuresSources;
  store_.append(group.id(), spec, {.size = spec.size, .sizeKnown = sizeKnown});
  const std::uint32_t index = group.append(spec.size, sizeKnown);
  if (!sizeKnown) {
    unmeasured_.add({group.id(), index});
  }
}

// The same fileId again: a new description for a file that waits, another chance for one that
// is done with. What is under way goes on.
void CTransferEngine::requeueFile(CTransferGroup& group, std::uint32_t index,
                                  const FileSpec& spec) {
  const FilePhase phase = group.file(index).phase;
  if (phase == FilePhase::kRunning) {
    return;
  }
  // A renewed URL may go on with what is there, another place may not. What lies on disk only was
  // not asked for its place; its partial file is checked before it is used, wherever it is.
  if (store_.place({group.id(), index}).value_or(spec.place) != spec.place) {
    book_.discardRest(group, index);
  }
  store_.replace({group.id(), index}, spec);
  group.forgetRetries(index);
  if (phase == FilePhase::kCompleted || phase == FilePhase::kFailed) {
    book_.move(group, index, FilePhase::kWaiting);
  }
  if (options_.measuresSources) {
    unmeasured_.add({group.id(), index});
  } else {
    book_.setSize(group, index, spec.size);
  }
}

void CTransferEngine::dequeueFiles(std::int32_t groupId, const std::vector<std::string>& fileIds) {
  change(groupId, [&](CTransferGroup& group) {
    for (const std::string& fileId : fileIds) {
      if (const auto index = store_.find(groupId, fileId)) {
        book_.remove(group, *index);
      }
    }
  });
}

void CTransferEngine::setMarked(std::int32_t groupId, bool marked) {
  change(groupId, [&](CTransferGroup& group) {
    group.setMarked(marked);
    book_.keep(group);
  });
}

void CTransferEngine::pauseGroup(std::int32_t groupId) {
  change(groupId, [&](CTransferGroup& group) {
    group.setPaused(true);
    book_.keep(group);
    book_.hold(group, FilePhase::kPaused, false);
    for (const std::uint32_t index : group.backingOff()) {
      book_.move(group, index, FilePhase::kPaused);
    }
  });
}

void CTransferEngine::resumeGroup(std::int32_t groupId) {
  change(groupId, [&](CTransferGroup& group) {
    group.setPaused(false);
    book_.keep(group);
    group.pace.notBefore = TimePoint{};
    group.pace.troubles = 0;
    group.pace.waitingFor.reset();
    for (const std::uint32_t index : group.backingOff()) {
      book_.move(group, index, FilePhase::kWaiting);
    }
    for (const std::uint32_t index : group.takePaused()) {
      if (group.file(index).phase == FilePhase::kPaused) {
        book_.move(group, index, FilePhase::kWaiting);
      }
    }
    for (const std::uint32_t index : group.takeFailed()) {
      if (group.file(index).phase == FilePhase::kFailed) {
        group.forgetRetries(index);
        book_.move(group, index, FilePhase::kWaiting);
      }
    }
  });
}

void CTransferEngine::cancelGroup(std::int32_t groupId) {
  change(groupId, [&](CTransferGroup& group) { book_.cancel(group); });
}

void CTransferEngine::setSettings(const Settings& settings) {
  {
    const std::lock_guard lock(mutex_);
    planner_.setSettings(settings);
  }
  wake_();
}

void CTransferEngine::start() {
  {
    const std::lock_guard lock(mutex_);
    planner_.start();
    book_.reporter().setRunning(true);
    book_.forgetCancelled();
    for (const auto& [id, group] : book_.groups()) {
      planner_.list(*group);
      book_.tellAnew(*group);
    }
  }
  wake_();
}

void CTransferEngine::stop() {
  const std::lock_guard lock(mutex_);
  planner_.stop();
  book_.reporter().setRunning(false);
  for (const auto& [id, group] : book_.groups()) {
    book_.hold(*group, FilePhase::kWaiting, true);
    for (const std::uint32_t index : group->backingOff()) {
      group->changePhase(index, FilePhase::kWaiting);
    }
    group->pace = {};
  }
  book_.dropStops();
  book_.leftovers().stop();
}

CTransferEngine::Work CTransferEngine::takeWork() {
  const bool congested = events_.congested();
  Work work;
  {
    const std::lock_guard lock(mutex_);
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
    const std::lock_guard lock(mutex_);
    CTransferGroup* touched = nullptr;
    for (const auto& [id, outcome] : ends) {
      Job* job = book_.jobs().find(id);
      if (job == nullptr) {
        continue;  // stopped in the meantime
      }
      const FileRef file = job->file;
      CTransferGroup& group = *book_.find(file.groupId);
      if (touched != nullptr && touched != &group) {
        goOn(*touched);
      }
      touched = &group;
      const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
      foldProgress(*job, group, clock_.now());
      book_.end(*job, group, done ? CTransferBook::Rest::kForget : CTransferBook::Rest::kKeep);
      lines.emplace_back(done ? ILog::Priority::kInformation : ILog::Priority::kWarning,
                         planner_.settle(group, file.index, outcome));
    }
    if (touched != nullptr) {
      goOn(*touched);
    }
  }
  for (const auto& [priority, line] : lines) {
    log_.write(priority, line);
  }
}

void CTransferEngine::goOn(CTransferGroup& group) {
  planner_.list(group);
  book_.tell(group);
}

bool CTransferEngine::onAttemptCheckpoint(JobId id) {
  const std::lock_guard lock(mutex_);
  return keepResume(id);
}

// False when it was stopped.
bool CTransferEngine::keepResume(JobId id) {
  const Job* job = book_.jobs().find(id);
  if (job != nullptr) {
    book_.keepResume(*job);
  }
  return job != nullptr;
}

bool CTransferEngine::onAttemptLanding(JobId id) {
  {
    const std::lock_guard lock(mutex_);
    Job* job = book_.jobs().find(id);
    if (job == nullptr) {
      return false;
    }
    job->landing = true;
  }
  wake_();
  return true;
}

void CTransferEngine::keepDurably(const std::vector<JobId>& jobs) {
  {
    const std::lock_guard lock(mutex_);
    for (const JobId job : jobs) {
      keepResume(job);
    }
  }
  settle_();
}

void CTransferEngine::onLeftBehind(Leftover leftover) {
  {
    const std::lock_guard lock(mutex_);
    book_.leftovers().addOnce(std::move(leftover));
  }
  wake_();
}

void CTransferEngine::onDiscarded(LeftoverId id, const AttemptOutcome& outcome) {
  const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
  std::string message;
  {
    const std::lock_guard lock(mutex_);
    message = book_.leftovers().settle(id, outcome);
  }
  if (!message.empty()) {
    log_.write(done ? ILog::Priority::kInformation : ILog::Priority::kWarning, message);
  }
  wake_();
}

bool CTransferEngine::isTransferring() const {
  const std::lock_guard lock(mutex_);
  return !book_.jobs().empty();
}

bool CTransferEngine::collectProgress() {
  const std::lock_guard lock(mutex_);
  const TimePoint now = clock_.now();
  for (auto& [id, job] : book_.jobs()) {
    CTransferGroup& group = *book_.find(job.file.groupId);
    if (foldProgress(job, group, now)) {
      group.pace.waitingFor.reset();
      book_.tell(group);
    }
    if (job.counted != job.told && now - job.toldAt >= CReporter::kInterval) {
      job.told = job.counted;
      job.toldAt = now;
      book_.reporter().file(book_.fileState(group, job.file.index));
    }
  }
  book_.reporter().tellDue(
      [this](std::int32_t groupId) -> const CTransferGroup* { return book_.find(groupId); }, now);
  return !book_.jobs().empty() || book_.reporter().hasDue();
}

std::vector<CTransferEngine::Unmeasured> CTransferEngine::takeUnmeasured(std::size_t limit) {
  const std::lock_guard lock(mutex_);
  return unmeasured_.take(limit, store_, [this](FileRef file) {
    const CTransferGroup* group = book_.find(file.groupId);
    return group != nullptr && !group->cancelled() &&
           group->file(file.index).phase == FilePhase::kWaiting;
  });
}

bool CTransferEngine::hasUnmeasured() const {
  const std::lock_guard lock(mutex_);
  return unmeasured_.ready();
}

void CTransferEngine::applySizes(const std::vector<Measured>& sizes) {
  const std::lock_guard lock(mutex_);
  CTransferGroup* touched = nullptr;
  for (const auto& [file, size] : sizes) {
    CTransferGroup* group = book_.find(file.groupId);
    if (touched != nullptr && touched != group) {
      book_.tell(*touched);
    }
    touched = group;
    // A file that was begun meanwhile knows better.
    if (group != nullptr && !group->cancelled() &&
        group->file(file.index).phase == FilePhase::kWaiting) {
      book_.setSize(*group, file.index, size);
    }
  }
  if (touched != nullptr) {
    book_.tell(*touched);
  }
}

void CTransferEngine::specsArrived(std::int32_t groupId) {
  {
    const std::lock_guard lock(mutex_);
    unmeasured_.goOn();
    CTransferGroup* group = book_.find(groupId);
    if (group != nullptr && !group->cancelled()) {
      planner_.list(*group);
    }
  }
  wake_();
}

}  // namespace zt_transfers
