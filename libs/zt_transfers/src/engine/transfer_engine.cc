#include "engine/transfer_engine.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/file_report.h"
#include "text/url_parts.h"
#include "text/wide_bytes.h"

namespace zt_transfers {
namespace {

// Files that fail before they begin are worked off in portions, so that the lock is given free.
constexpr int kStartsAtOnce = 512;

// Files that have arrived and are being put in place, beside those that use the network.
constexpr std::size_t kMostLanding = 256;

// Of each group; the program should not drown in what failed before it was started.
constexpr std::size_t kMostFailuresToldAnew = 1000;

// What is kept of a file's phase: an attempt does not outlive the process.
FilePhase kept(FilePhase phase) {
  switch (phase) {
    case FilePhase::kCompleted:
    case FilePhase::kFailed:
    case FilePhase::kRemoved:
      return phase;
    default:
      return FilePhase::kWaiting;
  }
}

}  // namespace

CTransferEngine::CTransferEngine(Options options, const Surroundings& surroundings)
    : options_(std::move(options)),
      clock_(surroundings.clock),
      store_(surroundings.store),
      events_(surroundings.events),
      log_(surroundings.log),
      wake_([] {}),
      retries_(options_.backoff),
      reporter_(surroundings.events) {}

void CTransferEngine::restore(std::int32_t lastGroupId, std::vector<RestoredGroup> groups) {
  const std::lock_guard lock(mutex_);
  groups_.clear();
  unmeasured_.clear();
  resumes_ = {};
  lastGroupId_ = lastGroupId;
  for (auto& [kept, files, resumes] : groups) {
    const std::int32_t id = kept.identity.id;
    lastGroupId_ = std::max(lastGroupId_, id);
    auto group = std::make_unique<CTransferGroup>(std::move(kept.identity), options_.needsMark);
    group->setPaused(kept.paused);
    group->setMarked(kept.marked);
    std::uint32_t index = 0;
    for (const StoredState& file : files) {
      group->appendKept(file.size, file.sizeKnown, file.phase);
      if (!file.sizeKnown && file.phase == FilePhase::kWaiting) {
        unmeasured_.add({id, index});
      }
      ++index;
    }
    for (const auto& [at, resume] : resumes) {
      if (group->file(at).phase == FilePhase::kWaiting ||
          group->file(at).phase == FilePhase::kFailed) {
        resumes_.keep(*group, at, resume);
      }
    }
    files = {};
    groups_.emplace(id, std::move(group));
  }
}

std::int32_t CTransferEngine::createGroup(GroupIdentity identity) {
  const std::lock_guard lock(mutex_);
  if (lastGroupId_ == std::numeric_limits<std::int32_t>::max()) {
    return -1;
  }
  identity.id = ++lastGroupId_;
  auto group = std::make_unique<CTransferGroup>(std::move(identity), options_.needsMark);
  keepGroup(*group);
  reporter_.group(*group, clock_.now());
  groups_.emplace(lastGroupId_, std::move(group));
  return lastGroupId_;
}

std::vector<GroupSnapshot> CTransferEngine::groups() const {
  const std::lock_guard lock(mutex_);
  const TimePoint now = clock_.now();
  std::vector<GroupSnapshot> shots;
  shots.reserve(groups_.size());
  for (const auto& [id, group] : groups_) {
    shots.push_back(group->snapshot(running_, now));
  }
  return shots;
}

std::optional<GroupSnapshot> CTransferEngine::group(std::int32_t groupId) const {
  const std::lock_guard lock(mutex_);
  const auto found = groups_.find(groupId);
  if (found == groups_.end()) {
    return std::nullopt;
  }
  return found->second->snapshot(running_, clock_.now());
}

void CTransferEngine::queueFiles(std::int32_t groupId, const std::vector<FileSpec>& specs) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    for (const FileSpec& spec : specs) {
      queueFile(*group, spec);
    }
    list(*group);
    reporter_.group(*group, clock_.now());
  }
  wake_();
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
  // A renewed URL may go on with what is there, another place may not.
  if (store_.place({group.id(), index}).value_or(spec.place) != spec.place) {
    discardRest(group, index);
  }
  store_.replace({group.id(), index}, spec);
  group.forgetRetries(index);
  if (phase == FilePhase::kCompleted || phase == FilePhase::kFailed) {
    moveFile(group, index, FilePhase::kWaiting);
  }
  if (options_.measuresSources) {
    unmeasured_.add({group.id(), index});
  } else {
    group.setSize(index, spec.size);
    keepFile(group, index);
  }
}

void CTransferEngine::dequeueFiles(std::int32_t groupId, const std::vector<std::string>& fileIds) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    for (const std::string& fileId : fileIds) {
      const auto index = store_.find(groupId, fileId);
      if (!index) {
        continue;
      }
      if (const Job* job = jobs_.findFile({groupId, *index})) {
        stopJob(job->id, *group, Rest::kForget);
      }
      discardRest(*group, *index);
      group->changePhase(*index, FilePhase::kRemoved);
      store_.remove({groupId, *index});
    }
    reporter_.group(*group, clock_.now());
  }
  wake_();
}

void CTransferEngine::setMarked(std::int32_t groupId, bool marked) {
  const std::lock_guard lock(mutex_);
  if (CTransferGroup* group = find(groupId)) {
    group->setMarked(marked);
    keepGroup(*group);
    reporter_.group(*group, clock_.now());
  }
}

void CTransferEngine::pauseGroup(std::int32_t groupId) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    group->setPaused(true);
    keepGroup(*group);
    holdJobs(*group, FilePhase::kPaused);
    for (const std::uint32_t index : group->backingOff()) {
      moveFile(*group, index, FilePhase::kPaused);
    }
    reporter_.group(*group, clock_.now());
  }
  wake_();
}

void CTransferEngine::resumeGroup(std::int32_t groupId) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    group->setPaused(false);
    keepGroup(*group);
    group->pace.notBefore = TimePoint{};
    group->pace.troubles = 0;
    for (const std::uint32_t index : group->takePaused()) {
      if (group->file(index).phase == FilePhase::kPaused) {
        moveFile(*group, index, FilePhase::kWaiting);
      }
    }
    for (const std::uint32_t index : group->takeFailed()) {
      if (group->file(index).phase == FilePhase::kFailed) {
        group->forgetRetries(index);
        moveFile(*group, index, FilePhase::kWaiting);
      }
    }
    list(*group);
    reporter_.group(*group, clock_.now());
  }
  wake_();
}

void CTransferEngine::cancelGroup(std::int32_t groupId) {
  {
    const std::lock_guard lock(mutex_);
    CTransferGroup* group = find(groupId);
    if (group == nullptr || group->cancelled()) {
      return;
    }
    for (const JobId id : jobs_.ofGroup(groupId)) {
      stopJob(id, *group, Rest::kForget);
    }
    for (auto& [index, resume] : resumes_.takeAll(*group)) {
      leftovers_.push_back({bytesOf(group->identity().folder), std::move(resume)});
    }
    group->setCancelled();
    store_.removeGroup(groupId);
    reporter_.group(*group, clock_.now());
  }
  wake_();
}

void CTransferEngine::setSettings(const Settings& settings) {
  {
    const std::lock_guard lock(mutex_);
    settings_ = settings;
  }
  wake_();
}

void CTransferEngine::start() {
  {
    const std::lock_guard lock(mutex_);
    running_ = true;
    reporter_.setRunning(true);
    for (auto entry = groups_.begin(); entry != groups_.end();) {
      if (entry->second->cancelled()) {
        reporter_.forget(entry->first);
        entry = groups_.erase(entry);
        continue;
      }
      list(*entry->second);
      reporter_.groupAnew(*entry->second, clock_.now());
      tellFailuresAnew(*entry->second);
      ++entry;
    }
  }
  wake_();
}

void CTransferEngine::tellFailuresAnew(const CTransferGroup& group) {
  std::size_t told = 0;
  for (const std::uint32_t index : group.failed()) {
    if (told == kMostFailuresToldAnew) {
      return;
    }
    if (group.file(index).phase == FilePhase::kFailed) {
      reporter_.file(fileState(group, index));
      ++told;
    }
  }
}

void CTransferEngine::stop() {
  const std::lock_guard lock(mutex_);
  running_ = false;
  reporter_.setRunning(false);
  for (auto& [id, group] : groups_) {
    holdJobs(*group, FilePhase::kWaiting);
    for (const std::uint32_t index : group->backingOff()) {
      group->changePhase(index, FilePhase::kWaiting);
    }
    group->pace = {};
  }
  stops_.clear();
  schedule_.clearRound();
  schedule_.clearDues();
}

CTransferEngine::Work CTransferEngine::takeWork() {
  Work work = decideWork(events_.congested());
  for (const std::string& failure : work.failures) {
    log_.error(failure);
  }
  return work;
}

CTransferEngine::Work CTransferEngine::decideWork(bool congested) {
  const std::lock_guard lock(mutex_);
  Work work;
  work.stops = std::exchange(stops_, {});
  work.leftovers = std::exchange(leftovers_, {});
  if (!running_) {
    return work;
  }
  wakeRetries();
  if (!congested) {
    startReady(work);
  }
  if (!work.nextDue) {
    work.nextDue = schedule_.nextDue();
  }
  return work;
}

void CTransferEngine::wakeRetries() {
  const TimePoint now = clock_.now();
  while (const auto due = schedule_.takeDue(now)) {
    CTransferGroup* group = find(due->file.groupId);
    if (group == nullptr || group->cancelled()) {
      continue;
    }
    if (!due->wholeGroup && group->file(due->file.index).phase == FilePhase::kBackingOff) {
      group->changePhase(due->file.index, FilePhase::kWaiting);
    }
    list(*group);
  }
}

void CTransferEngine::startReady(Work& work) {
  const std::size_t most = std::max<std::uint32_t>(settings_.maxConcurrent, 1);
  const TimePoint now = clock_.now();
  const auto hasRoom = [&] {
    return jobs_.transferring() < most && jobs_.size() < most + kMostLanding;
  };
  for (int starts = 0; hasRoom(); ++starts) {
    if (starts == kStartsAtOnce) {
      work.nextDue = now;
      return;
    }
    const auto groupId = schedule_.takeFromRound();
    if (!groupId) {
      return;
    }
    CTransferGroup* group = find(*groupId);
    if (group == nullptr) {
      continue;
    }
    group->pace.listed = false;
    if (group->paused() || group->cancelled()) {
      continue;
    }
    if (group->pace.notBefore > now) {
      schedule_.addDue({group->pace.notBefore, {*groupId, 0}, true});
      continue;
    }
    if (startNext(*group, work)) {
      list(*group);
    }
  }
}

// Begins the group's next file; false when none waits.
bool CTransferEngine::startNext(CTransferGroup& group, Work& work) {
  const auto index = group.takeWaiting();
  if (!index) {
    return false;
  }
  if (expired(group.identity().tokenExpires)) {
    failWaiting(group, *index, "the group's token has expired", work);
    return true;
  }
  auto spec = store_.spec({group.id(), *index});
  if (!spec) {
    if (store_.bring({group.id(), *index})) {
      group.putBack(*index);
      return false;  // specsArrived lists the group again
    }
    failWaiting(group, *index, "its description cannot be read", work);
    return true;
  }
  if (expired(spec->expires)) {
    failWaiting(group, *index, "its URL has expired", work);
    return true;
  }
  Job& job = jobs_.add({group.id(), *index}, clock_.now());
  job.counted = resumes_.counted(job.file);
  StartOrder order;
  order.resume = resumes_.take(group, *index);
  order.folder = bytesOf(group.identity().folder);
  group.addInFlight(job.counted);
  job.progress->bytes = job.counted;
  job.progress->setResume(order.resume);
  order.job = job.id;
  order.file = job.file;
  order.spec = std::move(*spec);
  order.verify = settings_.verify;
  order.proxy = settings_.proxy;
  order.parts = settings_.parts;
  order.progress = job.progress;
  moveFile(group, *index, FilePhase::kRunning);
  reporter_.group(group, clock_.now());
  work.starts.push_back(std::move(order));
  return true;
}

void CTransferEngine::failWaiting(CTransferGroup& group, std::uint32_t index,
                                  const std::string& reason, Work& work) {
  work.failures.push_back(fileText(group, index) + ": failed: " + reason);
  moveFile(group, index, FilePhase::kFailed);
  reporter_.group(group, clock_.now());
}

void CTransferEngine::specsArrived(std::int32_t groupId) {
  {
    const std::lock_guard lock(mutex_);
    unmeasured_.goOn();
    CTransferGroup* group = find(groupId);
    if (group != nullptr && !group->cancelled()) {
      list(*group);
    }
  }
  wake_();
}

bool CTransferEngine::expired(std::uint64_t time) const {
  return time != 0 && static_cast<std::uint64_t>(clock_.secondsSince1970()) >= time;
}

void CTransferEngine::onAttemptDone(JobId id, const AttemptOutcome& outcome) {
  std::string message;
  {
    const std::lock_guard lock(mutex_);
    Job* job = jobs_.find(id);
    if (job == nullptr) {
      return;  // stopped in the meantime
    }
    const FileRef file = job->file;
    CTransferGroup& group = *groups_.at(file.groupId);
    foldProgress(*job, group, clock_.now());
    const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
    endJob(*job, group, done ? Rest::kForget : Rest::kKeep);
    message = settle(group, file.index, outcome);
    list(group);
    reporter_.group(group, clock_.now());
  }
  const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
  log_.write(done ? ILog::Priority::kInformation : ILog::Priority::kWarning, message);
}

void CTransferEngine::onAttemptCheckpoint(JobId id) {
  const std::lock_guard lock(mutex_);
  if (const Job* job = jobs_.find(id)) {
    store_.saveResume(job->file, job->progress->resume());
  }
}

bool CTransferEngine::onAttemptLanding(JobId id) {
  {
    const std::lock_guard lock(mutex_);
    Job* job = jobs_.find(id);
    if (job == nullptr) {
      return false;
    }
    job->landing = true;
  }
  wake_();
  return true;
}

// Moves the file on by the attempt's outcome and gives the line for the log.
std::string CTransferEngine::settle(CTransferGroup& group, std::uint32_t index,
                                    const AttemptOutcome& outcome) {
  if (outcome.kind == AttemptOutcome::Kind::kDone) {
    group.pace.troubles = 0;
    const std::string text = fileText(group, index);
    moveFile(group, index, FilePhase::kCompleted);
    return text + ": completed";
  }
  const bool again = outcome.kind == AttemptOutcome::Kind::kRetry &&
                     group.file(index).retries < settings_.maxRetries;
  if (again) {
    return scheduleRetry(group, index, outcome);
  }
  const std::string text = fileText(group, index);
  moveFile(group, index, FilePhase::kFailed);
  const std::string after =
      outcome.kind == AttemptOutcome::Kind::kRetry
          ? " after " + std::to_string(group.file(index).retries + 1) + " attempts"
          : "";
  return text + ": failed" + after + ": " + outcome.reason;
}

std::string CTransferEngine::scheduleRetry(CTransferGroup& group, std::uint32_t index,
                                           const AttemptOutcome& outcome) {
  const TimePoint now = clock_.now();
  group.countRetry(index);
  const std::uint32_t retry = group.file(index).retries;
  const auto delay = retries_.delay(retry, outcome);
  retries_.rest(group.pace, outcome, now);
  moveFile(group, index, FilePhase::kBackingOff);
  schedule_.addDue({now + delay, {group.id(), index}, false});
  return fileText(group, index) + ": attempt " + std::to_string(retry) + " of " +
         std::to_string(settings_.maxRetries + 1) + " failed, next in " +
         std::to_string(delay.count()) + " ms: " + outcome.reason;
}

bool CTransferEngine::collectProgress() {
  const std::lock_guard lock(mutex_);
  const TimePoint now = clock_.now();
  for (auto& [id, job] : jobs_) {
    CTransferGroup& group = *groups_.at(job.file.groupId);
    if (foldProgress(job, group, now)) {
      reporter_.group(group, now);
    }
    if (job.counted != job.told && now - job.toldAt >= CReporter::kInterval) {
      job.told = job.counted;
      job.toldAt = now;
      reporter_.file(fileState(group, job.file.index));
    }
  }
  reporter_.tellDue(
      [this](std::int32_t groupId) { return static_cast<const CTransferGroup*>(find(groupId)); },
      now);
  return !jobs_.empty() || reporter_.hasDue();
}

std::vector<CTransferEngine::Unmeasured> CTransferEngine::takeUnmeasured(std::size_t limit) {
  const std::lock_guard lock(mutex_);
  return unmeasured_.take(limit, store_, [this](FileRef file) {
    const CTransferGroup* group = find(file.groupId);
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
  const TimePoint now = clock_.now();
  CTransferGroup* touched = nullptr;
  for (const auto& [file, size] : sizes) {
    CTransferGroup* group = find(file.groupId);
    if (touched != nullptr && touched != group) {
      reporter_.group(*touched, now);
    }
    touched = group;
    // A file that was begun meanwhile knows better.
    if (group != nullptr && !group->cancelled() &&
        group->file(file.index).phase == FilePhase::kWaiting) {
      group->setSize(file.index, size);
      keepFile(*group, file.index);
    }
  }
  if (touched != nullptr) {
    reporter_.group(*touched, now);
  }
}

CTransferGroup* CTransferEngine::find(std::int32_t groupId) {
  const auto found = groups_.find(groupId);
  return found == groups_.end() ? nullptr : found->second.get();
}

void CTransferEngine::moveFile(CTransferGroup& group, std::uint32_t index, FilePhase to) {
  const FilePhase before = kept(group.file(index).phase);
  group.changePhase(index, to);
  if (kept(to) != before) {
    keepFile(group, index);
  }
  reporter_.file(fileState(group, index));
}

void CTransferEngine::keepGroup(const CTransferGroup& group) {
  if (!group.cancelled()) {
    store_.saveGroup(
        {.identity = group.identity(), .paused = group.paused(), .marked = group.marked()});
  }
}

void CTransferEngine::keepFile(const CTransferGroup& group, std::uint32_t index) {
  const FileSlot& slot = group.file(index);
  store_.setState({group.id(), index},
                  {.phase = kept(slot.phase), .size = slot.size, .sizeKnown = slot.sizeKnown});
}

void CTransferEngine::endJob(const Job& job, CTransferGroup& group, Rest rest) {
  group.removeInFlight(job.counted);
  if (rest == Rest::kKeep) {
    const DownloadResume resume = job.progress->resume();
    resumes_.keep(group, job.file.index, resume);
    store_.saveResume(job.file, resume);
  }
  jobs_.erase(job.id);
}

void CTransferEngine::stopJob(JobId id, CTransferGroup& group, Rest rest) {
  stops_.push_back({id, rest == Rest::kForget});
  endJob(*jobs_.find(id), group, rest);
}

// Stops what uses the network of the group; its files go on to `then`.
void CTransferEngine::holdJobs(CTransferGroup& group, FilePhase then) {
  for (const JobId id : jobs_.ofGroup(group.id())) {
    const Job& job = *jobs_.find(id);
    const std::uint32_t index = job.file.index;
    if (!job.landing || !running_) {
      stopJob(id, group, Rest::kKeep);
      moveFile(group, index, then);
    }
  }
}

// Lets the network thread remove what attempts have left of a file.
void CTransferEngine::discardRest(CTransferGroup& group, std::uint32_t index) {
  DownloadResume resume = resumes_.take(group, index);
  if (resume.begun()) {
    leftovers_.push_back({bytesOf(group.identity().folder), std::move(resume)});
    store_.saveResume({group.id(), index}, {});
  }
}

FileState CTransferEngine::fileState(const CTransferGroup& group, std::uint32_t index) const {
  const FileRef file{group.id(), index};
  return reportOf(group, index, store_.fileId(file), jobs_.findFile(file), resumes_.counted(file),
                  clock_.now());
}

void CTransferEngine::list(CTransferGroup& group) {
  if (!group.pace.listed && running_ && group.count(FilePhase::kWaiting) != 0) {
    group.pace.listed = true;
    schedule_.addToRound(group.id());
  }
}

std::string CTransferEngine::fileText(const CTransferGroup& group, std::uint32_t index) {
  const FileRef file{group.id(), index};
  const auto spec = store_.spec(file);
  return options_.activity + " of file " + store_.fileId(file) + " of group " +
         std::to_string(group.id()) + (spec ? " (" + loggableUrl(spec->url) + ")" : "");
}

}  // namespace zt_transfers
