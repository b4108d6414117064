#include "engine/transfer_group.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace zt_transfers {

CTransferGroup::CTransferGroup(GroupIdentity identity, bool needsMark)
    : identity_(std::move(identity)), needsMark_(needsMark) {}

std::uint32_t CTransferGroup::append(std::uint64_t size, bool sizeKnown) {
  appendKept(size, sizeKnown, FilePhase::kWaiting);
  return static_cast<std::uint32_t>(files_.size() - 1);
}

void CTransferGroup::appendKept(std::uint64_t size, bool sizeKnown, FilePhase phase) {
  files_.push_back(FileSlot{.size = size, .sizeKnown = sizeKnown, .phase = phase});
  ++counts_[static_cast<std::size_t>(phase)];
  if (phase == FilePhase::kRemoved) {
    return;
  }
  total_ += size;
  if (phase == FilePhase::kCompleted) {
    completed_ += size;
  } else if (phase == FilePhase::kFailed) {
    failed_.push_back(static_cast<std::uint32_t>(files_.size() - 1));
  }
}

void CTransferGroup::changePhase(std::uint32_t index, FilePhase to) {
  FileSlot& slot = files_.at(index);
  if (!mayFollow(slot.phase, to)) {
    throw std::logic_error("a transfer's phase " + std::to_string(int(slot.phase)) +
                           " cannot become " + std::to_string(int(to)));
  }
  --counts_[static_cast<std::size_t>(slot.phase)];
  ++counts_[static_cast<std::size_t>(to)];
  if (slot.phase == FilePhase::kCompleted) {
    completed_ -= slot.size;
  } else if (slot.phase == FilePhase::kBackingOff) {
    backingOff_.erase(index);
  }
  slot.phase = to;
  slot.parked = false;
  switch (to) {
    case FilePhase::kWaiting:
      returned_.push_back(index);
      break;
    case FilePhase::kRunning:
      break;
    case FilePhase::kBackingOff:
      backingOff_.insert(index);
      break;
    case FilePhase::kPaused:
      paused_.push_back(index);
      break;
    case FilePhase::kCompleted:
      completed_ += slot.size;
      break;
    case FilePhase::kFailed:
      failed_.push_back(index);
      break;
    case FilePhase::kRemoved:
      total_ -= slot.size;
      break;
  }
}

void CTransferGroup::setSize(std::uint32_t index, std::uint64_t size) {
  FileSlot& slot = files_.at(index);
  if (slot.phase == FilePhase::kRemoved || slot.phase == FilePhase::kCompleted) {
    return;
  }
  total_ += size - slot.size;
  slot.size = size;
  slot.sizeKnown = true;
}

void CTransferGroup::setCancelled() {
  if (completed()) {
    counts_ = {};
  }
  isCancelled_ = true;
  files_.clear();
  returned_.clear();
  parked_.clear();
  paused_.clear();
  failed_.clear();
  backingOff_.clear();
}

std::optional<std::uint32_t> CTransferGroup::takeWaiting() {
  while (!returned_.empty()) {
    const std::uint32_t index = returned_.front();
    returned_.pop_front();
    if (files_[index].phase == FilePhase::kWaiting) {
      return index;
    }
  }
  while (nextNew_ < files_.size()) {
    const std::uint32_t index = nextNew_++;
    if (files_[index].phase == FilePhase::kWaiting) {
      return index;
    }
  }
  return std::nullopt;
}

void CTransferGroup::park(std::uint32_t index, OriginId origin) {
  files_.at(index).parked = true;
  parked_.add(origin, index);
}

void CTransferGroup::parkFirst(std::uint32_t index, OriginId origin) {
  files_.at(index).parked = true;
  parked_.addFirst(origin, index);
}

std::optional<std::uint32_t> CTransferGroup::takeParked(OriginId origin) {
  return parked_.take(
      origin, [this](std::uint32_t index) { return std::exchange(files_[index].parked, false); });
}

void CTransferGroup::unpark(std::uint32_t index) {
  if (std::exchange(files_.at(index).parked, false)) {
    returned_.push_back(index);
  }
}

void CTransferGroup::unparkAll() {
  parked_.clear();
  returned_.clear();
  nextNew_ = 0;
}

void CTransferGroup::countWait(std::uint32_t index) {
  std::uint8_t& waits = files_.at(index).waits;
  waits = static_cast<std::uint8_t>(std::min(waits + 1, 255));
}

void CTransferGroup::refundRetries(std::uint32_t index, std::uint32_t retries) {
  std::uint32_t& used = files_.at(index).retries;
  used -= std::min(used, retries);
}

void CTransferGroup::forgetRetries(std::uint32_t index) {
  files_.at(index).retries = 0;
  files_.at(index).waits = 0;
}

GroupStateCode CTransferGroup::state(bool running) const {
  if (isCancelled_) {
    return kGroupIdle;
  }
  if (left() == 0) {
    if (count(FilePhase::kFailed) != 0) {
      return kGroupErrored;
    }
    if (needsMark_ ? isMarked_ : live() != 0) {
      return kGroupCompleted;
    }
    return isPaused_ ? kGroupPaused : kGroupIdle;
  }
  if (isPaused_) {
    return kGroupPaused;
  }
  return running ? kGroupTransferring : kGroupIdle;
}

GroupSnapshot CTransferGroup::snapshot(bool running, TimePoint now) const {
  GroupSnapshot shot;
  shot.state = state(running);
  shot.bucketType = identity_.bucketType;
  shot.id = identity_.id;
  shot.bucketId = identity_.bucketId;
  shot.bytesTransferred = std::min(completed_ + inFlight_, total_);
  shot.bytesTotal = total_;
  if (shot.state == kGroupTransferring) {
    shot.bytesTransferredPerSecond = rate_.bytesPerSecond(now);
    shot.estimatedEta = etaSeconds(total_ - shot.bytesTransferred, shot.bytesTransferredPerSecond);
  }
  shot.percentTransferred = percent(shot.bytesTransferred, running);
  shot.empty = live() == 0;
  shot.paused = isPaused_;
  shot.cancelled = isCancelled_;
  shot.marked = isMarked_;
  shot.filesCompleted = static_cast<std::int32_t>(count(FilePhase::kCompleted));
  shot.folder = identity_.folder;
  if (scheduling.waitingFor && shot.state == kGroupTransferring) {
    shot.waitingFor = scheduling.waitingFor->code;
  }
  return shot;
}

std::uint32_t CTransferGroup::live() const {
  if (isCancelled_) {
    return 0;
  }
  return static_cast<std::uint32_t>(files_.size()) - count(FilePhase::kRemoved);
}

std::uint32_t CTransferGroup::left() const {
  return count(FilePhase::kWaiting) + count(FilePhase::kRunning) + count(FilePhase::kBackingOff) +
         count(FilePhase::kPaused);
}

float CTransferGroup::percent(std::uint64_t transferred, bool running) const {
  if (total_ == 0) {
    const bool done = state(running) == kGroupCompleted ||
                      (live() != 0 && live() == count(FilePhase::kCompleted));
    return done ? 100.0F : 0.0F;
  }
  return static_cast<float>(100.0 * static_cast<double>(transferred) / static_cast<double>(total_));
}

}  // namespace zt_transfers
