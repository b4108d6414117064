#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "engine/transfer_engine.h"
#include "simulation/virtual_disk.h"
#include "simulation/virtual_network.h"
#include "simulation/virtual_pool.h"
#include "store/queue_database.h"
#include "store/stored_queue.h"

namespace zt_transfers::test {

// A manager in virtual time: the real engine, store and runner, with the world's network, pool and
// disk instead of threads. Thread: one.
class CVirtualClient {
 public:
  struct Options {
    bool uploads = false;
    TransferSettings settings{};
    std::string database;  // path; what is written to it is durable
    std::function<void(const TransferEvent&)> told;
    std::function<void(const std::string&)> log;
  };

  CVirtualClient(CWorld& world, CVirtualServers& servers, CVirtualDisk& disk, Options options);
  // As if the process were killed.
  ~CVirtualClient();

  CTransferEngine& engine() { return engine_; }
  // Makes all changes of the queue durable.
  void write();
  // Ends it in order.
  void shutdown();
  void setThrottle(std::uint64_t bytesPerSecond) {
    network_.throttle().setRate(bytesPerSecond, world_.now());
    network_.wake();
  }

 private:
  class CLog final : public ILog {
   public:
    explicit CLog(const std::function<void(const std::string&)>& log) : log_(log) {}
    void write(Priority, std::string_view message) noexcept override { log_(std::string(message)); }

   private:
    const std::function<void(const std::string&)>& log_;
  };

  std::optional<TimePoint> tick();
  void statSources();
  void writeSoon();
  void readSoon();
  void report();

  CWorld& world_;
  CVirtualDisk& disk_;
  const Options options_;
  CLog log_;
  CQueueCache store_;
  std::unique_ptr<CQueueDatabase> database_;
  CEventQueue events_;
  CTransferEngine engine_;
  CVirtualPool pool_;
  CVirtualNetwork network_;
  std::unique_ptr<IAttemptRunner> runner_;
  bool ticked_ = true;  // since the last report
  bool writing_ = false;
  bool statting_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace zt_transfers::test
