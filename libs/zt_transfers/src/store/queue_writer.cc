#include "store/queue_writer.h"

#include <algorithm>
#include <utility>

#include "base/this_thread.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kMaxWritten = 4096;  // changes in one transaction

TimePoint now() {
  return std::chrono::steady_clock::now();
}

}  // namespace

CQueueWriter::CQueueWriter(std::string name, const Dependencies& dependencies,
                           std::unique_ptr<CQueueDatabase> database, const Timing& timing)
    : name_(std::move(name)),
      dependencies_(dependencies),
      timing_(timing),
      database_(std::move(database)) {
  dependencies_.store.record({.changed =
                                  [this] {
                                    const CMutexLock lock(mutex_);
                                    if (!std::exchange(changed_, true)) {
                                      woken_.notifyOne();
                                    }
                                  },
                              .requested =
                                  [this] {
                                    const CMutexLock lock(mutex_);
                                    requested_ = true;
                                    woken_.notifyOne();
                                  }});
  if (!database_) {
    due_ = now() + timing_.firstRetry;
  }
  thread_ = std::thread([this] {
    nameThisThread(name_);
    run();
  });
}

CQueueWriter::~CQueueWriter() {
  flush();
  {
    const CMutexLock lock(mutex_);
    stopping_ = true;
  }
  woken_.notifyOne();
  thread_.join();
  dependencies_.store.stopRecording();
  database_.reset();
  if (!damage_.empty()) {
    dependencies_.file.setAside(damage_);
  }
}

bool CQueueWriter::flush() {
  const std::uint64_t wanted = dependencies_.store.changesNoted();
  CMutexLock lock(mutex_);
  // The failure of a try that is under way does not count: it may have begun before there was room.
  const std::uint64_t next = tries_ + 1;
  ordered_ = true;
  woken_.notifyOne();
  finished_.wait(mutex_,
                 [&]() REQUIRES(mutex_) { return durable_ >= wanted || failedTry_ >= next; });
  return durable_ >= wanted;
}

void CQueueWriter::flush(std::chrono::milliseconds limit) {
  const std::uint64_t wanted = dependencies_.store.changesNoted();
  CMutexLock lock(mutex_);
  if (failing_ || durable_ >= wanted) {
    return;
  }
  ordered_ = true;
  woken_.notifyOne();
  finished_.waitFor(mutex_, limit,
                    [&]() REQUIRES(mutex_) { return failing_ || durable_ >= wanted; });
}

void CQueueWriter::run() {
  for (;;) {
    wait();
    {
      const CMutexLock lock(mutex_);
      if (stopping_) {
        return;
      }
      requested_ = false;
    }
    serveRequests();
    writeDue();
    sweep();
  }
}

// Waits until there is work.
void CQueueWriter::wait() {
  CMutexLock lock(mutex_);
  const auto urgent = [this]() REQUIRES(mutex_) { return stopping_ || ordered_ || requested_; };
  if (due_) {
    woken_.waitUntil(mutex_, *due_, urgent);
  } else if (!sweeping_) {
    woken_.wait(mutex_, [&]() REQUIRES(mutex_) { return urgent() || changed_; });
  }
  if (!due_ && changed_) {
    due_ = now() + timing_.gather;
  }
}

void CQueueWriter::serveRequests() {
  while (const auto range = dependencies_.store.takeRequest()) {
    serve(*range);
    dependencies_.store.endArrival(*range);
    dependencies_.arrived(range->groupId);
  }
}

void CQueueWriter::serve(const CQueueCache::Range& range) {
  if (!database_) {
    return;
  }
  try {
    database_->readSpecs(
        range.groupId, range.from, range.to,
        [this](FileRef file, std::string_view spec) { dependencies_.store.arrive(file, spec); });
  } catch (const CSqliteError& error) {
    if (error.isDamage()) {
      damage_ = error.what();
    }
    dependencies_.log.error("Files of group " + std::to_string(range.groupId) +
                            " cannot be read from the queue " + dependencies_.file.path() + ": " +
                            error.what() + "; they fail, others go on");
  }
}

void CQueueWriter::writeDue() {
  if (!takeOrder()) {
    return;
  }
  due_.reset();
  const bool done = writeBatch();
  if (!done) {
    due_ = now() + retry_;
  } else if (const std::size_t waiting = dependencies_.store.changesWaiting()) {
    due_ = waiting < kMaxWritten ? now() + timing_.gather : now();
  }
  notifyFinished(done);
}

bool CQueueWriter::takeOrder() {
  const CMutexLock lock(mutex_);
  if (!std::exchange(ordered_, false) && (!due_ || *due_ > now())) {
    return false;
  }
  changed_ = false;
  ++tries_;
  return true;
}

void CQueueWriter::notifyFinished(bool done) {
  const std::uint64_t durable = dependencies_.store.changesTaken();
  {
    const CMutexLock lock(mutex_);
    failing_ = !done;
    if (done) {
      durable_ = durable;
    } else {
      failedTry_ = tries_;
    }
  }
  finished_.notifyAll();
}

bool CQueueWriter::openDatabase() {
  database_ = dependencies_.file.open(dependencies_.load);
  if (!database_) {
    retry_ = std::clamp(retry_ * 2, timing_.firstRetry, timing_.lastRetry);
    return false;
  }
  retry_ = {};
  sweeping_ = true;
  dependencies_.log.information("The queue " + dependencies_.file.path() + " is open now");
  dependencies_.opened();
  return true;
}

bool CQueueWriter::writeBatch() {
  if (!database_ && !openDatabase()) {
    return false;
  }
  const QueueBatch batch = dependencies_.store.collect(kMaxWritten);
  if (batch.writes.empty()) {
    return true;
  }
  try {
    database_->write(batch);
  } catch (const CSqliteError& error) {
    dependencies_.store.putBack(batch);
    if (error.isDamage()) {
      damage_ = error.what();
    }
    failed(error.what());
    return false;
  }
  dependencies_.store.written(batch);
  sweeping_ =
      sweeping_ || std::any_of(batch.writes.begin(), batch.writes.end(), [](const auto& one) {
        return one.change.kind == QueueChange::Kind::kGroupRemoved;
      });
  if (std::exchange(retry_, {}) != std::chrono::milliseconds::zero()) {
    dependencies_.log.information("The queue " + dependencies_.file.path() +
                                  " can be written to again");
  }
  return true;
}

void CQueueWriter::failed(const std::string& what) {
  if (retry_ == std::chrono::milliseconds::zero()) {
    dependencies_.log.error(
        "The queue " + dependencies_.file.path() + " cannot be written to: " + what +
        "; transfers go on, what is not written is kept in memory and tried again");
  }
  retry_ = std::clamp(retry_ * 2, timing_.firstRetry, timing_.lastRetry);
}

// In small steps, so that reads and writes are served in between.
void CQueueWriter::sweep() {
  if (!sweeping_ || due_) {
    return;
  }
  try {
    sweeping_ = database_ && database_->sweep();
  } catch (const CSqliteError& error) {
    sweeping_ = false;  // with the next group that is removed, or at the next start
    dependencies_.log.warning("Removed groups cannot be cleared from the queue " +
                              dependencies_.file.path() + " now: " + error.what());
  }
}

}  // namespace zt_transfers
