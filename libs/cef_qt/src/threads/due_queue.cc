#include "threads/due_queue.h"

#include <algorithm>

namespace cef_qt {

void DueQueue::push(QueuedTask task, int64_t delayMs) {
  if (delayMs <= 0) {
    // The due time is compared with delayed tasks only, and reading the clock is not free.
    const auto due = delayed_.empty() ? Clock::time_point::min() : Clock::now();
    immediate_.push_back({due, sequence_++, std::move(task)});
    return;
  }
  // A hundred years still fit the clock.
  constexpr int64_t kMaxDelayMs = int64_t{1000} * 3600 * 24 * 365 * 100;
  const auto delay = std::chrono::milliseconds(std::min(delayMs, kMaxDelayMs));
  delayed_.push_back({Clock::now() + delay, sequence_++, std::move(task)});
  std::push_heap(delayed_.begin(), delayed_.end(), Later());
}

bool DueQueue::delayedIsNext() const {
  return !delayed_.empty() && (immediate_.empty() || Later()(immediate_.front(), delayed_.front()));
}

QueuedTask DueQueue::takeDelayed() {
  std::pop_heap(delayed_.begin(), delayed_.end(), Later());
  QueuedTask task = std::move(delayed_.back().task);
  delayed_.pop_back();
  return task;
}

std::optional<QueuedTask> DueQueue::takeReady() {
  if (delayedIsNext()) {
    if (delayed_.front().due > Clock::now()) {
      return std::nullopt;
    }
    return takeDelayed();
  }
  if (immediate_.empty()) {
    return std::nullopt;
  }
  QueuedTask task = std::move(immediate_.front().task);
  immediate_.pop_front();
  return task;
}

std::optional<DueQueue::Clock::time_point> DueQueue::nextDue() const {
  if (delayedIsNext()) {
    return delayed_.front().due;
  }
  if (immediate_.empty()) {
    return std::nullopt;
  }
  return immediate_.front().due;
}

std::vector<QueuedTask> DueQueue::takeAll() {
  std::vector<QueuedTask> all;
  for (Entry& entry : immediate_) {
    all.push_back(std::move(entry.task));
  }
  for (Entry& entry : delayed_) {
    all.push_back(std::move(entry.task));
  }
  immediate_.clear();
  delayed_.clear();
  return all;
}

}  // namespace cef_qt
