#include "hash/md5_combiner.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zt_transfers {
namespace {

// Two messages take longer together than one after the other.
constexpr std::size_t kWorthTogether = 3;

// A transfer reads or has received some pieces ahead, so that so short a wait does not hold it up.
constexpr std::chrono::milliseconds kGatherLimit(4);

}  // namespace

CMd5Combiner& CMd5Combiner::shared() {
  static CMd5Combiner combiner(std::max(1U, std::thread::hardware_concurrency() / 2));
  return combiner;
}

CMd5Combiner::CMember::CMember(CMd5Combiner& combiner) : combiner_(combiner) {
  const std::lock_guard lock(combiner_.mutex_);
  ++combiner_.members_;
}

CMd5Combiner::CMember::~CMember() {
  const std::lock_guard lock(combiner_.mutex_);
  --combiner_.members_;
}

void CMd5Combiner::CMember::add(Md5State& state, const unsigned char* data, std::size_t blocks) {
  combiner_.add(state, data, blocks);
}

void CMd5Combiner::add(Md5State& state, const unsigned char* data, std::size_t blocks) {
  Task own{.state = &state, .data = data, .blocks = blocks};
  std::unique_lock lock(mutex_);
  waiting_.push_back(&own);
  gather(lock, own);
  changed_.wait(lock, [&] { return own.done || (!own.taken && atWork_ < mostAtWork_); });
  if (own.done) {
    return;
  }
  ++atWork_;
  const std::vector<Task*> taken = take(own);
  std::vector<Task> tasks;
  for (const Task* task : taken) {
    tasks.push_back(*task);
  }
  lock.unlock();
  work(std::move(tasks));
  lock.lock();
  --atWork_;
  for (Task* task : taken) {
    task->done = true;
  }
  lock.unlock();
  changed_.notify_all();
}

// A message that comes alone waits for those that are under way besides it.
void CMd5Combiner::gather(std::unique_lock<std::mutex>& lock, const Task& own) {
  const std::size_t wanted = std::min(members_, kMd5Lanes) * 3 / 4;
  if (waiting_.size() >= wanted) {
    changed_.notify_all();
  } else if (wanted >= kWorthTogether) {
    changed_.wait_for(lock, kGatherLimit, [&] { return own.taken || waiting_.size() >= wanted; });
  }
}

// The own one and the oldest.
std::vector<CMd5Combiner::Task*> CMd5Combiner::take(Task& own) {
  waiting_.erase(std::find(waiting_.begin(), waiting_.end(), &own));
  const std::size_t others = std::min(waiting_.size(), kMd5Lanes - 1);
  const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(others);
  std::vector<Task*> taken(waiting_.begin(), end);
  waiting_.erase(waiting_.begin(), end);
  taken.push_back(&own);
  for (Task* task : taken) {
    task->taken = true;
  }
  return taken;
}

void CMd5Combiner::work(std::vector<Task> tasks) {
  while (tasks.size() >= kWorthTogether) {
    Md5State unused{};
    std::array<Md5State*, kMd5Lanes> states{};
    std::array<const unsigned char*, kMd5Lanes> data{};
    std::size_t blocks = tasks.front().blocks;
    for (std::size_t lane = 0; lane < kMd5Lanes; ++lane) {
      const bool used = lane < tasks.size();
      states[lane] = used ? tasks[lane].state : &unused;
      data[lane] = tasks[used ? lane : 0].data;
      blocks = used ? std::min(blocks, tasks[lane].blocks) : blocks;
    }
    addMd5Blocks(states, data, blocks);
    for (Task& task : tasks) {
      task.data += blocks * kMd5BlockSize;
      task.blocks -= blocks;
    }
    std::erase_if(tasks, [](const Task& task) { return task.blocks == 0; });
  }
  for (const Task& task : tasks) {
    addMd5Blocks(*task.state, task.data, task.blocks);
  }
}

}  // namespace zt_transfers
