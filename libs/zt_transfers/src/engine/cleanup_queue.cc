#include "engine/cleanup_queue.h"

#include <algorithm>

#include "base/url_parts.h"

namespace zt_transfers {
namespace {

constexpr std::chrono::milliseconds kInUseDelay{50};

std::string textOf(const Orphan& orphan) {
  return orphan.resume.isUpload()
             ? "the multipart upload to " + loggableUrl(orphan.resume.upload().url)
             : "the partial file " + orphan.folder + "/" + orphan.resume.download().partialPath;
}

}  // namespace

void CCleanupQueue::restore(std::vector<std::pair<OrphanId, Orphan>> stored, OrphanId last) {
  entries_.clear();
  last_ = std::max(last_, last);
  adopt(std::move(stored));
  stop();
}

void CCleanupQueue::adopt(std::vector<std::pair<OrphanId, Orphan>> stored) {
  for (auto& [id, orphan] : stored) {
    last_ = std::max(last_, id);
    entries_.emplace(id, Entry{std::move(orphan)});
    waiting_.push_back(id);
  }
}

void CCleanupQueue::add(Orphan orphan) {
  if (!orphan.resume.begun()) {
    return;
  }
  if (orphan.resume.isUpload()) {
    orphan.resume.upload().parts.clear();  // not needed for an abort
  }
  orphan.since = clock_.secondsSince1970();
  store_.saveOrphan(++last_, orphan);
  waiting_.push_back(last_);
  entries_.emplace(last_, Entry{std::move(orphan)});
}

void CCleanupQueue::addOnce(Orphan orphan) {
  const bool known = std::any_of(entries_.begin(), entries_.end(), [&](const auto& entry) {
    return sameThing(orphan, entry.second.orphan);
  });
  if (!known) {
    add(std::move(orphan));
  }
}

void CCleanupQueue::forget(const Orphan& used) {
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    if (sameThing(used, entry->second.orphan)) {
      waiting_.erase(std::remove(waiting_.begin(), waiting_.end(), entry->first), waiting_.end());
      store_.removeOrphan(entry->first);
      entry = entries_.erase(entry);
    } else {
      ++entry;
    }
  }
}

std::vector<CleanupTask> CCleanupQueue::takeDue() {
  std::vector<CleanupTask> due;
  if (notBefore_ > clock_.now()) {
    return due;
  }
  while (!waiting_.empty() && entries_.size() - waiting_.size() < kMaxConcurrent) {
    const OrphanId id = waiting_.front();
    waiting_.pop_front();
    due.push_back({id, entries_.at(id).orphan, {}});
  }
  return due;
}

std::optional<TimePoint> CCleanupQueue::nextDue() const {
  return waiting_.empty() || notBefore_ <= clock_.now() ? std::nullopt : std::optional(notBefore_);
}

std::string CCleanupQueue::applyOutcome(OrphanId id, const AttemptOutcome& outcome) {
  const auto found = entries_.find(id);
  if (found == entries_.end()) {
    return {};
  }
  const std::string text = textOf(found->second.orphan);
  const bool done = outcome.kind == AttemptOutcome::Kind::kDone;
  if (outcome.kind == AttemptOutcome::Kind::kRetry && outcome.reason.empty()) {
    waiting_.push_back(id);
    notBefore_ = std::max(notBefore_, clock_.now() + kInUseDelay);
    return {};
  }
  const bool old = clock_.secondsSince1970() - found->second.orphan.since > kMaxAge.count();
  if (outcome.kind == AttemptOutcome::Kind::kRetry && !old) {
    backOff(outcome);
    waiting_.push_back(id);
    const bool known = std::exchange(found->second.failedBefore, true);
    return known ? "" : "Cannot discard " + text + " now, it is tried again: " + outcome.reason;
  }
  if (done) {
    failures_ = 0;
  }
  store_.removeOrphan(id);
  entries_.erase(found);
  return done ? "Discarded " + text
              : "Cannot discard " + text + ", and tries no more: " + outcome.reason;
}

// A new attempt of a download reuses the partial file of an earlier one.
bool CCleanupQueue::sameThing(const Orphan& one, const Orphan& other) {
  if (!one.resume.begun() || one.resume.isUpload() != other.resume.isUpload()) {
    return false;
  }
  if (one.resume.isUpload()) {
    return one.resume.upload().uploadId == other.resume.upload().uploadId &&
           one.resume.upload().url == other.resume.upload().url;
  }
  return one.folder == other.folder &&
         one.resume.download().partialPath == other.resume.download().partialPath;
}

// Failures of tasks that were under way when a delay began do not lengthen it.
void CCleanupQueue::backOff(const AttemptOutcome& outcome) {
  const TimePoint now = clock_.now();
  if (notBefore_ <= now) {
    notBefore_ = now + retries_.delay(++failures_, outcome);
  }
}

void CCleanupQueue::stop() {
  waiting_.clear();
  for (const auto& [id, entry] : entries_) {
    waiting_.push_back(id);
  }
  failures_ = 0;
  notBefore_ = TimePoint{};
}

}  // namespace zt_transfers
