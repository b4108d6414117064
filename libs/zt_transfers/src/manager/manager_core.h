#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/log.h"
#include "base/mutex.h"
#include "base/worker_pool.h"
#include "engine/event_queue.h"
#include "engine/transfer_engine.h"
#include "http/http_loop.h"
#include "manager/event_dispatcher.h"
#include "power/sleep_guard.h"
#include "reports/progress_reporter.h"
#include "store/stored_queue.h"
#include "zt_transfers/transfer_manager_base.h"

namespace zt_transfers {

// The parts that both managers share: the engine, its threads, and the wiring between them.
//
// Threads: one for the network ("zt-net-…"), one that delivers events ("zt-tell-…"), one that keeps
// the machine awake ("zt-wake-…"), and a pool for files ("zt-disk-…"), all between startup and
// shutdown only. One for the database ("zt-store-…") from the first change or startup to
// shutdown. Ownership: a manager owns one; the program's one thread calls all
// operations.
class CManagerCore {
 public:
  struct RunnerDependencies {
    IHttpTransport& loop;
    IExecutor& pool;
    ILog& log;
    IAttemptObserver& observer;
  };
  struct Options {
    std::string shortName;  // for thread names: "up", "down"
    std::string database;   // name of the queue's file in the application files path
    CTransferEngine::Options engine;
    std::function<std::unique_ptr<IAttemptRunner>(const RunnerDependencies&)> makeRunner;
    std::function<void(const TransferEvent&)> deliver;  // called on the event thread
  };

  explicit CManagerCore(Options options);
  ~CManagerCore();
  CManagerCore(const CManagerCore&) = delete;
  CManagerCore& operator=(const CManagerCore&) = delete;

  // For operations that change the queue. The stored queue is read first.
  CTransferEngine& engine();
  // For operations that only look at it. After `shutdown` they find it as it was then.
  const CTransferEngine& engineToRead();
  void cancelGroup(std::int32_t groupId);
  void configure(const CTransferManagerBase::Configuration& configuration);

  void startup();
  void shutdown();

 private:
  // Opens the log at startup, when the files path is known.
  class CDeferredLog : public ILog {
   public:
    void open(const std::string& folder);
    void write(Priority priority, std::string_view message) noexcept override;

   private:
    std::shared_ptr<ILog> log_;  // set while no other thread of the manager runs
  };

  enum class QueueState {
    kUnread,
    kOpen,
    kInMemory,  // there is no place for it on disk
    kClosed,    // as it was at the last shutdown
  };

  void openQueue() REQUIRES(opening_);
  void closeQueue();
  void prepareDelivery(const std::vector<TransferEvent>& events);
  std::optional<TimePoint> tick();
  void statSources();

  const Options options_;
  const CSystemClock clock_;
  CDeferredLog log_;
  CStoredQueue queue_;
  CEventQueue events_;
  CTransferEngine engine_;
  CWorkerPool pool_;
  CHttpLoop loop_;
  CProgressReporter progress_;
  CEventDispatcher dispatcher_;
  CSleepGuard sleepGuard_;
  const std::unique_ptr<IAttemptRunner> runner_;
  CMutex opening_;
  QueueState queueState_ GUARDED_BY(opening_) = QueueState::kUnread;
  bool started_ = false;
  std::uint64_t throttle_ = 0;
  bool statting_ = false;  // the network thread only
};

}  // namespace zt_transfers
