#pragma once

#include <cstddef>
#include <vector>

#include "base/mutex.h"
#include "hash/md5_lockstep.h"

namespace zt_transfers {

// Lets one thread hash for several: whoever finds a place hashes what others wait with as well, up
// to eight messages at once in about the time of two. Where several messages are under way, a piece
// waits for others for some milliseconds; where one or two are, it does not.
//
// Thread: any.
class CMd5Combiner {
 public:
  // At most so many threads hash at the same time; the more, the fewer messages each has.
  explicit CMd5Combiner(unsigned maxRunning) : maxRunning_(maxRunning) {}
  CMd5Combiner(const CMd5Combiner&) = delete;
  CMd5Combiner& operator=(const CMd5Combiner&) = delete;

  // The process's own, for half of the processor's cores: a hash is not all that a transfer needs.
  static CMd5Combiner& shared();

  // A message that is under way, of which more pieces are to come soon.
  class CMember {
   public:
    explicit CMember(CMd5Combiner& combiner);
    CMember(const CMember&) = delete;
    CMember& operator=(const CMember&) = delete;
    ~CMember();

    // Works the blocks into `state`; both stay the caller's. Returns when that is done.
    void add(Md5State& state, const unsigned char* data, std::size_t blocks);

   private:
    CMd5Combiner& combiner_;
  };

 private:
  struct Task {
    Md5Piece piece;
    bool taken = false;
    bool done = false;
  };

  void add(Md5State& state, const unsigned char* data, std::size_t blocks);
  void gather(const Task& own) REQUIRES(mutex_);
  std::vector<Task*> take(Task& own) REQUIRES(mutex_);

  const unsigned maxRunning_;

  CMutex mutex_;
  CConditionVariable changed_;
  std::vector<Task*> waiting_ GUARDED_BY(mutex_);  // the oldest first
  unsigned atWork_ GUARDED_BY(mutex_) = 0;
  std::size_t members_ GUARDED_BY(mutex_) = 0;
};

}  // namespace zt_transfers
