#include "manager/manager_core.h"

#include <sys/stat.h>

#include <algorithm>
#include <initializer_list>
#include <thread>
#include <utility>

#include "base/file_url.h"
#include "base/transfer_log.h"
#include "hash/md5_blocks.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kMaxStats = 256;

// For the database, before files get their names or are told to be completed nevertheless.
constexpr std::chrono::milliseconds kMaxFlushTime{1000};

// More than the processor has cores: some of them wait for a disk, and those that hash are served
// by one of them together.
constexpr unsigned kPoolSize = kMd5Lanes;

// 0 when it is not to be had; sending it will say why.
std::uint64_t sizeOfSource(const std::string& url) {
  const auto path = pathOfFileUrl(url);
  struct stat status {};
  if (!path || ::stat(path->c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return 0;
  }
  return static_cast<std::uint64_t>(status.st_size);
}

std::optional<TimePoint> earliest(std::initializer_list<std::optional<TimePoint>> times) {
  std::optional<TimePoint> first;
  for (const auto& time : times) {
    first = time && (!first || *time < *first) ? time : first;
  }
  return first;
}

std::vector<CTransferEngine::FileSize> sizesOf(
    const std::vector<CTransferEngine::PendingSize>& files) {
  std::vector<CTransferEngine::FileSize> sizes;
  sizes.reserve(files.size());
  for (const auto& [file, place] : files) {
    sizes.push_back({file, sizeOfSource(place)});
  }
  return sizes;
}

}  // namespace

void CManagerCore::CDeferredLog::open(const std::string& folder) {
  log_ = folder.empty() ? nullptr : CTransferLog::inFolder(folder);
}

void CManagerCore::CDeferredLog::write(Priority priority, std::string_view message) noexcept {
  if (log_) {
    log_->write(priority, message);
  }
}

CManagerCore::CManagerCore(Options options)
    : options_(std::move(options)),
      queue_("zt-store-" + options_.shortName, log_,
             [this](std::int32_t groupId) { engine_.specsArrived(groupId); }),
      engine_(options_.engine,
              {.clock = clock_, .store = queue_.store(), .events = events_, .log = log_}),
      pool_("zt-disk-" + options_.shortName),
      loop_("zt-net-" + options_.shortName, clock_),
      progress_(options_.engine.activity,
                {.loop = loop_,
                 .log = log_,
                 .look = [this](std::int32_t id) { return engine_.report(id); }}),
      dispatcher_("zt-tell-" + options_.shortName, events_,
                  {.prepare = [this](const auto& events) { flushCompleted(events); },
                   .deliver = [this](const auto& event) { deliver(event); },
                   .collectProgress = [this] { return engine_.collectProgress(); },
                   .caughtUp = [this] { loop_.wake(); }}),
      sleepGuard_("zt-wake-" + options_.shortName,
                  makeSleepInhibitor("Files are transferred", log_)),
      runner_(
          options_.makeRunner({.loop = loop_, .pool = pool_, .log = log_, .observer = engine_})) {
  engine_.setWake([this] { loop_.wake(); });
  engine_.setFlush([this] { queue_.flush(kMaxFlushTime); });
}

CManagerCore::~CManagerCore() {
  shutdown();
  queue_.abandon();  // while the engine is there, which its thread may call
}

CTransferEngine& CManagerCore::openEngine() {
  openQueue();
  return engine_;
}

void CManagerCore::openQueue() {
  const CMutexLock lock(opening_);
  if (opened_) {
    return;
  }
  opened_ = true;
  const std::string folder = CZtTransfersGlobalConfig::getInstance()->appFilesPath();
  log_.open(folder);
  if (folder.empty()) {
    return;
  }
  if (auto found = queue_.open(folder + "/" + options_.database)) {
    engine_.restore(std::move(*found));
  }
}

void CManagerCore::configure(const CTransferManagerBase::Configuration& configuration) {
  engine_.setSettings({.maxConcurrent = configuration.maxConcurrentTransfers,
                       .maxRetries = configuration.maxTransferRetries,
                       .verify = configuration.verifyUploads,
                       .proxy = configuration.proxy,
                       .parts = {.from = configuration.minMultipartSize,
                                 .size = configuration.partSize,
                                 .requests = configuration.maxConcurrentTransfers}});
  sleepGuard_.setWanted(configuration.preventSleep);
  progress_.setProxy(configuration.proxy);
  throttle_ = configuration.throttleBytesPerSecond;
  loop_.post([this, rate = throttle_] { loop_.throttle().setRate(rate, clock_.now()); });
}

void CManagerCore::startup() {
  if (started_) {
    return;
  }
  started_ = true;
  openQueue();
  log_.information("Starting " + options_.engine.activity + "s");
  engine_.start();
  dispatcher_.start();
  sleepGuard_.start();
  pool_.start(kPoolSize);
  loop_.throttle().setRate(throttle_, clock_.now());  // before anything is begun
  loop_.start([this] { return tick(); },
              [this] {
                progress_.stop();
                runner_->stopAll();
              });
}

void CManagerCore::shutdown() {
  if (!started_) {
    closeQueue();
    return;
  }
  started_ = false;
  loop_.stop();
  pool_.stop();
  statting_ = false;
  runner_->syncToDisk();
  engine_.stop();
  sleepGuard_.setTransferring(false);
  sleepGuard_.stop();
  dispatcher_.stop();
  closeQueue();
  log_.information("Stopped " + options_.engine.activity + "s");
}

// From here on another manager may have the queue; whoever needs it again here reads it anew.
// Without a database, what is in memory is all there is.
void CManagerCore::closeQueue() {
  const CMutexLock lock(opening_);
  opened_ = queue_.isOpen() ? !queue_.close() : !engine_.groups().empty();
}

void CManagerCore::deliver(const TransferEvent& event) {
  if (const auto* group = std::get_if<GroupSnapshot>(&event)) {
    progress_.note(*group);
  }
  options_.deliver(event);
}

// What the program is told to be completed is so after a crash as well.
void CManagerCore::flushCompleted(const std::vector<TransferEvent>& events) {
  const bool completed = std::any_of(events.begin(), events.end(), [](const TransferEvent& event) {
    const auto* file = std::get_if<FileState>(&event);
    return file != nullptr && file->state == kFileCompleted;
  });
  if (completed) {
    queue_.flush(kMaxFlushTime);
  }
}

std::optional<TimePoint> CManagerCore::tick() {
  statSources();
  CTransferEngine::Work work = engine_.takeWork();
  for (const AttemptStop& stop : work.stops) {
    runner_->stop(stop);
  }
  for (const CleanupTask& order : work.cleanups) {
    runner_->discard(order);
  }
  bool allBegun = true;
  for (StartOrder& order : work.starts) {
    allBegun = runner_->start(std::move(order)) && allBegun;
  }
  sleepGuard_.setTransferring(engine_.isTransferring());
  const auto attempts = runner_->tick();
  const auto report = progress_.tick();
  if (!allBegun) {
    return clock_.now();  // an attempt that could not even begin has made room for the next
  }
  return earliest({work.nextDue, attempts, report});
}

// Lets the pool find sizes, one portion at a time so that transfers get their turn there.
void CManagerCore::statSources() {
  if (statting_ || !engine_.hasPendingSizes()) {
    return;
  }
  statting_ = true;
  pool_.post([this] {
    engine_.applySizes(sizesOf(engine_.takePendingSizes(kMaxStats)));
    loop_.post([this] { statting_ = false; });
  });
}

}  // namespace zt_transfers
