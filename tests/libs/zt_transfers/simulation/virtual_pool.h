#pragma once

#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <utility>

#include "base/executor.h"
#include "simulation/world.h"

namespace zt_transfers::test {

// A pool of threads in virtual time. A task takes effect at once, when its time is over; tasks that
// began together end in any order.
class CVirtualPool final : public IExecutor {
 public:
  // `taskLimit`: of a task that begins now; a slow disk changes it.
  CVirtualPool(CWorld& world, std::function<std::chrono::milliseconds()> taskLimit)
      : world_(world), taskLimit_(std::move(taskLimit)) {}

  void post(std::function<void()> task) override;
  // Drops the tasks that have not begun and runs the others.
  void stop();
  // Drops all tasks, as when the process is killed.
  void kill();

 private:
  static constexpr std::size_t kThreads = 8;
  using Task = std::shared_ptr<std::function<void()>>;

  void begin();

  CWorld& world_;
  const std::function<std::chrono::milliseconds()> taskLimit_;
  std::deque<Task> waiting_;
  std::list<Task> running_;
  bool stopped_ = false;
};

}  // namespace zt_transfers::test
