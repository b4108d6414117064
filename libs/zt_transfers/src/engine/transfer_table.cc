#include "engine/transfer_table.h"

#include <algorithm>
#include <limits>

#include "engine/file_report.h"
#include "base/url_parts.h"
#include "base/wide_bytes.h"

namespace zt_transfers {
namespace {

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

CTransferBook::CTransferBook(std::string activity, const IClock& clock, IQueueStore& store,
                             CEventQueue& events, const BackoffPolicy& backoff)
    : activity_(std::move(activity)),
      clock_(clock),
      store_(store),
      leftovers_(clock, store, backoff),
      reporter_(events) {}

CTransferGroup* CTransferBook::find(std::int32_t groupId) {
  const auto found = groups_.find(groupId);
  return found == groups_.end() ? nullptr : found->second.get();
}

CTransferGroup* CTransferBook::create(GroupIdentity identity, bool needsMark) {
  if (lastGroupId_ == std::numeric_limits<std::int32_t>::max()) {
    return nullptr;
  }
  identity.id = ++lastGroupId_;
  auto group = std::make_unique<CTransferGroup>(std::move(identity), needsMark);
  keep(*group);
  tell(*group);
  return groups_.emplace(lastGroupId_, std::move(group)).first->second.get();
}

void CTransferBook::restore(RestoredQueue queue, bool needsMark) {
  groups_.clear();
  resumes_ = {};
  failures_ = {};
  lastGroupId_ = queue.lastGroupId;
  leftovers_.restore(std::move(queue.leftovers));
  for (RestoredGroup& restored : queue.groups) {
    restore(restored, needsMark);
    restored = {};
  }
}

void CTransferBook::restore(RestoredGroup& restored, bool needsMark) {
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

void CTransferBook::forgetCancelled() {
  for (auto entry = groups_.begin(); entry != groups_.end();) {
    if (entry->second->cancelled()) {
      reporter_.forget(entry->first);
      entry = groups_.erase(entry);
    } else {
      ++entry;
    }
  }
}

void CTransferBook::keep(const CTransferGroup& group) {
  if (!group.cancelled()) {
    store_.saveGroup(
        {.identity = group.identity(), .paused = group.paused(), .marked = group.marked()});
  }
}

void CTransferBook::cancel(CTransferGroup& group) {
  for (const JobId id : jobs_.ofGroup(group.id())) {
    stop(id, group, Rest::kForget);
  }
  for (auto& [index, resume] : resumes_.takeAll(group)) {
    leftovers_.add({bytesOf(group.identity().folder), std::move(resume)});
  }
  failures_.forgetGroup(group.id());
  group.setCancelled();
  store_.removeGroup(group.id());
}

void CTransferBook::tellAnew(const CTransferGroup& group) {
  reporter_.groupAnew(group, clock_.now());
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

void CTransferBook::move(CTransferGroup& group, std::uint32_t index, FilePhase to) {
  const FilePhase before = kept(group.file(index).phase);
  if (before == FilePhase::kFailed) {
    failures_.forget(group.id(), index);
  }
  group.changePhase(index, to);
  if (kept(to) != before) {
    keepFile(group, index);
  }
  reporter_.file(fileState(group, index));
}

void CTransferBook::fail(CTransferGroup& group, std::uint32_t index, const Failure& failure) {
  failures_.add(group.id(), index, failure);
  store_.saveFailure({group.id(), index}, failure);
  move(group, index, FilePhase::kFailed);
}

void CTransferBook::setSize(CTransferGroup& group, std::uint32_t index, std::uint64_t size) {
  group.setSize(index, size);
  keepFile(group, index);
}

void CTransferBook::remove(CTransferGroup& group, std::uint32_t index) {
  if (const Job* job = jobs_.findFile({group.id(), index})) {
    stop(job->id, group, Rest::kForget);
  }
  discardRest(group, index);
  failures_.forget(group.id(), index);
  group.changePhase(index, FilePhase::kRemoved);
  store_.remove({group.id(), index});
}

void CTransferBook::keepFile(const CTransferGroup& group, std::uint32_t index) {
  const FileSlot& slot = group.file(index);
  store_.setState({group.id(), index},
                  {.phase = kept(slot.phase), .size = slot.size, .sizeKnown = slot.sizeKnown});
}

StartOrder CTransferBook::begin(CTransferGroup& group, std::uint32_t index, FileSpec spec) {
  Job& job = jobs_.add({group.id(), index}, clock_.now());
  job.counted = resumes_.counted(job.file);
  StartOrder order;
  order.resume = resumes_.take(group, index);
  order.folder = bytesOf(group.identity().folder);
  group.addInFlight(job.counted);
  job.progress->bytes = job.counted;
  job.progress->setResume(order.resume);
  order.job = job.id;
  order.file = job.file;
  order.spec = std::move(spec);
  order.progress = job.progress;
  move(group, index, FilePhase::kRunning);
  return order;
}

void CTransferBook::end(const Job& job, CTransferGroup& group, Rest rest) {
  if (rest == Rest::kKeep) {
    keepRest(job, group, job.progress->resume());
  }
  leave(job, group);
}

void CTransferBook::keepRest(const Job& job, CTransferGroup& group, const TransferResume& resume) {
  resumes_.keep(group, job.file.index, resume);
  save(job, group, resume);
}

void CTransferBook::keepResume(const Job& job) {
  if (const CTransferGroup* group = find(job.file.groupId)) {
    save(job, *group, job.progress->resume());
  }
}

// What is gone on with is not left behind, though it may have been once.
void CTransferBook::save(const Job& job, const CTransferGroup& group,
                         const TransferResume& resume) {
  leftovers_.forget({bytesOf(group.identity().folder), resume});
  store_.saveResume(job.file, resume);
}

void CTransferBook::leave(const Job& job, CTransferGroup& group) {
  group.removeInFlight(job.counted);
  jobs_.erase(job.id);
}

void CTransferBook::stop(JobId id, CTransferGroup& group, Rest rest) {
  const Job& job = *jobs_.find(id);
  AttemptStop stop{.job = id, .folder = bytesOf(group.identity().folder), .progress = job.progress};
  Leftover leftover = stop.leftover();
  // What it begins only now, before it hears of its stop, is unknown here.
  stop.discard = rest == Rest::kForget || !leftover.resume.begun();
  stops_.push_back(std::move(stop));
  if (rest == Rest::kKeep) {
    keepRest(job, group, leftover.resume);
  } else {
    // An attempt removes its partial file itself, if nothing comes in between.
    leftovers_.add(std::move(leftover));
  }
  leave(job, group);
}

void CTransferBook::dropStops() {
  for (const AttemptStop& stop : takeStops()) {
    if (stop.discard && !stop.progress->resume().isUpload()) {
      leftovers_.addOnce(stop.leftover());
    }
  }
}

void CTransferBook::hold(CTransferGroup& group, FilePhase then, bool everything) {
  for (const JobId id : jobs_.ofGroup(group.id())) {
    const Job& job = *jobs_.find(id);
    const std::uint32_t index = job.file.index;
    if (everything || !job.landing) {
      stop(id, group, Rest::kKeep);
      move(group, index, then);
    }
  }
}

void CTransferBook::discardRest(CTransferGroup& group, std::uint32_t index) {
  TransferResume resume = resumes_.take(group, index);
  if (resume.begun()) {
    leftovers_.add({bytesOf(group.identity().folder), std::move(resume)});
    store_.saveResume({group.id(), index}, {});
  }
}

FileState CTransferBook::fileState(const CTransferGroup& group, std::uint32_t index) const {
  const FileRef file{group.id(), index};
  return reportOf(group, index, store_.fileId(file), jobs_.findFile(file), resumes_.counted(file),
                  clock_.now());
}

std::string CTransferBook::fileText(const CTransferGroup& group, std::uint32_t index) {
  const FileRef file{group.id(), index};
  const auto spec = store_.spec(file);
  return activity_ + " of file " + store_.fileId(file) + " of group " + std::to_string(group.id()) +
         (spec ? " (" + loggableUrl(spec->url) + ")" : "");
}

}  // namespace zt_transfers
