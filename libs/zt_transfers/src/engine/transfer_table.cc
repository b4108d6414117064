#include "engine/transfer_table.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "base/url_parts.h"
#include "base/wide_bytes.h"

namespace zt_transfers {
namespace {

// Of each group, so that the program is not flooded with failures of earlier runs.
constexpr std::size_t kMaxFailuresNotified = 1000;

// As it is stored: an attempt does not outlive the process.
FilePhase stored(FilePhase phase) {
  switch (phase) {
    case FilePhase::kCompleted:
    case FilePhase::kFailed:
    case FilePhase::kRemoved:
      return phase;
    default:
      return FilePhase::kWaiting;
  }
}

// `attempt` is under way, or null; `kept` bytes are left of earlier attempts.
FileState reportOf(const CTransferGroup& group, std::uint32_t index, std::string fileId,
                   const RunningAttempt* attempt, std::uint64_t kept, TimePoint now) {
  const FileSlot& slot = group.file(index);
  FileState state;
  state.groupId = group.id();
  state.bucketId = group.identity().bucketId;
  state.fileId = std::move(fileId);
  state.state = publicState(slot.phase);
  state.bytesTotal = slot.size;
  if (slot.phase == FilePhase::kCompleted) {
    state.bytesTransferred = slot.size;
    state.percentTransferred = 100.0F;
    return state;
  }
  state.bytesTransferred = std::min(attempt != nullptr ? attempt->counted : kept, slot.size);
  if (attempt != nullptr) {
    state.bytesTransferredPerSecond = attempt->rate.bytesPerSecond(now);
  }
  if (slot.size != 0) {
    state.percentTransferred = static_cast<float>(
        100.0 * static_cast<double>(state.bytesTransferred) / static_cast<double>(slot.size));
  }
  return state;
}

// Whether `now` leaves the partial file of `before` behind.
bool isReplaced(const TransferResume& before, const TransferResume& now) {
  return before.begun() && !before.isUpload() && !now.isUpload() &&
         before.download().partialPath != now.download().partialPath;
}

}  // namespace

CTransferTable::CTransferTable(std::string activity, const IClock& clock, IQueueStore& store,
                               CEventQueue& events, const BackoffPolicy& backoff)
    : activity_(std::move(activity)),
      clock_(clock),
      store_(store),
      origins_(backoff),
      cleanups_(clock, store, backoff),
      eventThrottle_(events) {}

CTransferGroup* CTransferTable::find(std::int32_t groupId) {
  const auto found = groups_.find(groupId);
  return found == groups_.end() ? nullptr : found->second.get();
}

CTransferGroup* CTransferTable::create(GroupIdentity identity, bool needsMark) {
  if (lastGroupId_ == std::numeric_limits<std::int32_t>::max()) {
    return nullptr;
  }
  identity.id = ++lastGroupId_;
  auto group = std::make_unique<CTransferGroup>(std::move(identity), needsMark);
  save(*group);
  notify(*group);
  return groups_.emplace(lastGroupId_, std::move(group)).first->second.get();
}

void CTransferTable::restore(RestoredQueue queue, bool needsMark) {
  groups_.clear();
  resumes_ = {};
  failures_ = {};
  completed_.clear();
  lastGroupId_ = 0;
  cleanups_.restore({}, queue.lastOrphanId);
  adopt(std::move(queue), needsMark);
}

void CTransferTable::adopt(RestoredQueue queue, bool needsMark) {
  lastGroupId_ = std::max(lastGroupId_, queue.lastGroupId);
  cleanups_.adopt(std::move(queue.orphans));
  for (RestoredGroup& restored : queue.groups) {
    restore(restored, needsMark);
    restored = {};
  }
}

void CTransferTable::restore(RestoredGroup& restored, bool needsMark) {
  const std::int32_t id = restored.group.identity.id;
  auto group = std::make_unique<CTransferGroup>(std::move(restored.group.identity), needsMark);
  group->setPaused(restored.group.paused);
  group->setMarked(restored.group.marked);
  for (const StoredState& file : restored.files) {
    group->appendKept(file.size, file.sizeKnown, file.phase);
  }
  for (const auto& [index, resume] : restored.resumes) {
    const FilePhase phase = group->file(index).phase;
    if (phase == FilePhase::kWaiting || phase == FilePhase::kFailed) {
      resumes_.keep(*group, index, resume);
    }
  }
  for (auto& [index, failure] : restored.failures) {
    failures_.add(id, index, std::move(failure));
  }
  lastGroupId_ = std::max(lastGroupId_, id);
  groups_.emplace(id, std::move(group));
}

void CTransferTable::forgetCancelled() {
  for (auto entry = groups_.begin(); entry != groups_.end();) {
    const auto& [id, group] = *entry++;
    if (group->cancelled()) {
      forget(id);
    }
  }
}

void CTransferTable::forget(std::int32_t groupId) {
  eventThrottle_.forget(groupId);
  completed_.erase(groupId);
  groups_.erase(groupId);
}

void CTransferTable::limitCompleted(const CTransferGroup& group) {
  if (!group.completed()) {
    completed_.erase(group.id());
    return;
  }
  completed_.insert(group.id());
  while (completed_.size() > kMaxCompleted) {
    const std::int32_t oldest =
        *completed_.begin() == group.id() ? *std::next(completed_.begin()) : *completed_.begin();
    cancel(*groups_.at(oldest));
    forget(oldest);
  }
}

void CTransferTable::save(const CTransferGroup& group) {
  if (!group.cancelled()) {
    store_.saveGroup(
        {.identity = group.identity(), .paused = group.paused(), .marked = group.marked()});
  }
}

void CTransferTable::pause(CTransferGroup& group) {
  group.setPaused(true);
  save(group);
  stopAttempts(group, FilePhase::kPaused, false);
  for (const std::uint32_t index : group.backingOff()) {
    move(group, index, FilePhase::kPaused);
  }
}

void CTransferTable::resume(CTransferGroup& group) {
  group.setPaused(false);
  save(group);
  group.scheduling.notBefore = TimePoint{};
  group.scheduling.outages = 0;
  group.scheduling.waitingFor.reset();
  origins_.endRest(std::exchange(group.scheduling.troubledBy, 0));
  for (const auto& [origin, files] : group.parked()) {
    origins_.endRest(origin);
  }
  for (const std::uint32_t index : group.backingOff()) {
    move(group, index, FilePhase::kWaiting);
  }
  for (const std::uint32_t index : group.takePaused()) {
    if (group.file(index).phase == FilePhase::kPaused) {
      move(group, index, FilePhase::kWaiting);
    }
  }
  for (const std::uint32_t index : group.takeFailed()) {
    if (group.file(index).phase == FilePhase::kFailed) {
      group.forgetRetries(index);
      move(group, index, FilePhase::kWaiting);
    }
  }
}

void CTransferTable::cancel(CTransferGroup& group) {
  for (const AttemptId id : attempts_.ofGroup(group.id())) {
    stop(id, group, Resume::kDiscard);
  }
  for (auto& [index, resume] : resumes_.takeAll(group)) {
    cleanups_.add({bytesOf(group.identity().folder), std::move(resume)});
  }
  failures_.forgetGroup(group.id());
  group.setCancelled();
  store_.removeGroup(group.id());
}

void CTransferTable::notifyAnew(const CTransferGroup& group) {
  eventThrottle_.groupAnew(group, clock_.now());
  std::size_t reported = 0;
  for (const std::uint32_t index : group.failed()) {
    if (reported == kMaxFailuresNotified) {
      return;
    }
    if (group.file(index).phase == FilePhase::kFailed) {
      eventThrottle_.file(fileState(group, index));
      ++reported;
    }
  }
}

void CTransferTable::move(CTransferGroup& group, std::uint32_t index, FilePhase to) {
  const FilePhase before = stored(group.file(index).phase);
  if (before == FilePhase::kFailed) {
    failures_.forget(group.id(), index);
  }
  group.changePhase(index, to);
  if (stored(to) != before) {
    saveFile(group, index);
  }
  eventThrottle_.file(fileState(group, index));
}

void CTransferTable::fail(CTransferGroup& group, std::uint32_t index, const Failure& failure) {
  failures_.add(group.id(), index, failure);
  store_.saveFailure({group.id(), index}, failure);
  move(group, index, FilePhase::kFailed);
}

void CTransferTable::setSize(CTransferGroup& group, std::uint32_t index, std::uint64_t size) {
  group.setSize(index, size);
  resumes_.recount(group, index);
  saveFile(group, index);
}

bool CTransferTable::countProgress(RunningAttempt& attempt, CTransferGroup& group, TimePoint now) {
  const FileSlot before = group.file(attempt.file.index);
  const bool changed = foldProgress(attempt, group, now);
  if (group.file(attempt.file.index).size != before.size) {
    saveFile(group, attempt.file.index);
  }
  return changed;
}

void CTransferTable::remove(CTransferGroup& group, std::uint32_t index) {
  if (const RunningAttempt* attempt = attempts_.findFile({group.id(), index})) {
    stop(attempt->id, group, Resume::kDiscard);
  }
  discardResume(group, index);
  failures_.forget(group.id(), index);
  group.changePhase(index, FilePhase::kRemoved);
  store_.remove({group.id(), index});
}

void CTransferTable::saveFile(const CTransferGroup& group, std::uint32_t index) {
  const FileSlot& slot = group.file(index);
  store_.setState({group.id(), index},
                  {.phase = stored(slot.phase), .size = slot.size, .sizeKnown = slot.sizeKnown});
}

StartOrder CTransferTable::begin(CTransferGroup& group, std::uint32_t index, FileSpec spec,
                                 OriginId origin) {
  RunningAttempt& attempt = attempts_.add({group.id(), index}, clock_.now());
  attempt.ticket = origins_.begin(origin, attempt.begunAt);
  attempt.counted = resumes_.counted(attempt.file);
  StartOrder order;
  order.resume = resumes_.take(group, index);
  order.folder = bytesOf(group.identity().folder);
  order.salt = store_.salt();
  group.addInFlight(attempt.counted);
  attempt.progress->bytes = attempt.counted;
  attempt.progress->setResume(order.resume);
  attempt.noted = order.resume;
  order.attemptId = attempt.id;
  order.file = attempt.file;
  order.spec = std::move(spec);
  order.progress = attempt.progress;
  move(group, index, FilePhase::kRunning);
  return order;
}

void CTransferTable::beginFinalization(RunningAttempt& attempt) {
  attempt.finalization = true;
  const COriginTable::Ticket ticket = std::exchange(attempt.ticket, {});
  origins_.end(ticket);
  origins_.succeed(ticket);
}

void CTransferTable::end(RunningAttempt& attempt, CTransferGroup& group, Resume fate) {
  if (fate == Resume::kKeep) {
    keepResume(attempt, group, attempt.progress->resume());
  }
  remove(attempt, group);
}

void CTransferTable::keepResume(RunningAttempt& attempt, CTransferGroup& group,
                                const TransferResume& resume) {
  resumes_.keep(group, attempt.file.index, resume);
  saveResume(attempt, group, resume);
}

void CTransferTable::saveResume(RunningAttempt& attempt) {
  if (const CTransferGroup* group = find(attempt.file.groupId)) {
    saveResume(attempt, *group, attempt.progress->resume());
  }
}

// A resumed file is no longer an orphan, but the one that it replaces is.
void CTransferTable::saveResume(RunningAttempt& attempt, const CTransferGroup& group,
                                const TransferResume& resume) {
  const std::string folder = bytesOf(group.identity().folder);
  if (isReplaced(attempt.noted, resume)) {
    cleanups_.addOnce({folder, std::exchange(attempt.noted, {})});
  }
  if (resume.begun()) {
    attempt.noted = resume;
  }
  cleanups_.forget({folder, resume});
  store_.saveResume(attempt.file, resume);
}

void CTransferTable::remove(const RunningAttempt& attempt, CTransferGroup& group) {
  group.removeInFlight(attempt.counted);
  origins_.end(attempt.ticket);
  attempts_.erase(attempt.id);
}

void CTransferTable::stop(AttemptId id, CTransferGroup& group, Resume fate) {
  RunningAttempt& attempt = *attempts_.find(id);
  AttemptStop stop{
      .attemptId = id, .folder = bytesOf(group.identity().folder), .progress = attempt.progress};
  Orphan orphan = stop.orphan();
  // The attempt may begin a partial file or session before it gets the stop.
  stop.discard = fate == Resume::kDiscard || !orphan.resume.begun();
  stops_.push_back(std::move(stop));
  if (fate == Resume::kKeep) {
    keepResume(attempt, group, orphan.resume);
  } else {
    // The attempt usually removes its partial file itself.
    cleanups_.add(std::move(orphan));
  }
  remove(attempt, group);
}

void CTransferTable::dropStops() {
  for (const AttemptStop& stop : takeStops()) {
    if (stop.discard && !stop.progress->resume().isUpload()) {
      cleanups_.addOnce(stop.orphan());
    }
  }
}

void CTransferTable::stopAttempts(CTransferGroup& group, FilePhase then, bool finalizing) {
  for (const AttemptId id : attempts_.ofGroup(group.id())) {
    const RunningAttempt& attempt = *attempts_.find(id);
    const std::uint32_t index = attempt.file.index;
    if (finalizing || !attempt.finalization) {
      stop(id, group, Resume::kKeep);
      move(group, index, then);
    }
  }
}

void CTransferTable::discardResume(CTransferGroup& group, std::uint32_t index) {
  TransferResume resume = resumes_.take(group, index);
  if (resume.begun()) {
    cleanups_.add({bytesOf(group.identity().folder), std::move(resume)});
    store_.saveResume({group.id(), index}, {});
  }
}

FileState CTransferTable::fileState(const CTransferGroup& group, std::uint32_t index) const {
  const FileRef file{group.id(), index};
  return reportOf(group, index, store_.fileId(file), attempts_.findFile(file),
                  resumes_.counted(file), clock_.now());
}

std::string CTransferTable::fileText(const CTransferGroup& group, std::uint32_t index) {
  const FileRef file{group.id(), index};
  const auto spec = store_.spec(file);
  return activity_ + " of file " + store_.fileId(file) + " of group " + std::to_string(group.id()) +
         (spec ? " (" + loggableUrl(spec->url) + ")" : "");
}

}  // namespace zt_transfers
