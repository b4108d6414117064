#include "simulation/virtual_pool.h"

#include <utility>

namespace zt_transfers::test {

void CVirtualPool::post(std::function<void()> task) {
  if (!stopped_) {
    waiting_.push_back(std::make_shared<std::function<void()>>(std::move(task)));
    begin();
  }
}

void CVirtualPool::begin() {
  while (running_.size() < kThreads && !waiting_.empty()) {
    const Task task = waiting_.front();
    waiting_.pop_front();
    running_.push_back(task);
    world_.after(world_.randomDelay(taskLimit_()), [this, weak = std::weak_ptr(task)] {
      if (const Task due = weak.lock()) {
        (*due)();
        running_.remove(due);
        begin();
      }
    });
  }
}

void CVirtualPool::stop() {
  stopped_ = true;
  waiting_.clear();
  for (const Task& task : std::exchange(running_, {})) {
    (*task)();
  }
}

void CVirtualPool::kill() {
  stopped_ = true;
  waiting_.clear();
  running_.clear();
}

}  // namespace zt_transfers::test
