#include "hash/md5_combiner.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zt_transfers {
namespace {

// Fewer messages are quicker one after the other.
constexpr std::size_t kWorthWaitingFor = 3;

// A transfer reads or has received some pieces ahead, so that so short a wait does not hold it up.
constexpr std::chrono::milliseconds kGatherLimit(4);

}  // namespace

CMd5Combiner& CMd5Combiner::shared() {
  static CMd5Combiner combiner(std::max(1U, std::thread::hardware_concurrency() / 2));
  return combiner;
}

CMd5Combiner::CMember::CMember(CMd5Combiner& combiner) : combiner_(combiner) {
  const CMutexLock lock(combiner_.mutex_);
  ++combiner_.members_;
}

CMd5Combiner::CMember::~CMember() {
  const CMutexLock lock(combiner_.mutex_);
  --combiner_.members_;
}

void CMd5Combiner::CMember::add(Md5State& state, const unsigned char* data, std::size_t blocks) {
  combiner_.add(state, data, blocks);
}

void CMd5Combiner::add(Md5State& state, const unsigned char* data, std::size_t blocks) {
  Task own{.piece = {.state = &state, .data = data, .blocks = blocks}};
  CMutexLock lock(mutex_);
  waiting_.push_back(&own);
  gather(own);
  changed_.wait(
      mutex_, [&]() REQUIRES(mutex_) { return own.done || (!own.taken && atWork_ < maxRunning_); });
  if (own.done) {
    return;
  }
  ++atWork_;
  const std::vector<Task*> taken = take(own);
  std::vector<Md5Piece> pieces;
  pieces.reserve(taken.size());
  for (const Task* task : taken) {
    pieces.push_back(task->piece);
  }
  lock.unlock();
  addInLockstep(std::move(pieces));
  lock.lock();
  --atWork_;
  for (Task* task : taken) {
    task->done = true;
  }
  lock.unlock();
  changed_.notifyAll();
}

// A message that comes alone waits for those that are under way besides it.
void CMd5Combiner::gather(const Task& own) {
  const std::size_t wanted = std::min(members_, kMd5Lanes) * 3 / 4;
  if (waiting_.size() >= wanted) {
    changed_.notifyAll();
  } else if (wanted >= kWorthWaitingFor) {
    changed_.waitFor(mutex_, kGatherLimit,
                     [&]() REQUIRES(mutex_) { return own.taken || waiting_.size() >= wanted; });
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

}  // namespace zt_transfers
