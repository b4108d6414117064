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

// Files get their final names, and are reported as completed, after this time in any case.
constexpr std::chrono::milliseconds kMaxFlushTime{1000};

// A cancelled group is gone for good when the program goes on, or after this time.
constexpr std::chrono::milliseconds kMaxCancelTime{250};

// More than the processor has cores: some threads wait for a disk, and one hashes for several.
constexpr unsigned kPoolSize = kMd5Lanes;

// 0 when the file cannot be statted; the attempt to send it reports the reason.
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
  for (const auto& [file, location] : files) {
    sizes.push_back({file, sizeOfSource(location)});
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
             {.arrived = [this](std::int32_t groupId) { engine_.specsArrived(groupId); },
              .found = [this](RestoredQueue found) { engine_.adopt(std::move(found)); }}),
      engine_(options_.engine,
              {.clock = clock_, .store = queue_.store(), .events = events_, .log = log_}),
      pool_("zt-disk-" + options_.shortName),
      loop_("zt-net-" + options_.shortName, clock_),
      progress_(options_.engine.activity,
                {.loop = loop_,
                 .log = log_,
                 .look = [this](std::int32_t id) { return engine_.report(id); }}),
      dispatcher_("zt-tell-" + options_.shortName, events_,
                  {.prepare = [this](const auto& events) { prepareDelivery(events); },
                   .deliver = options_.deliver,
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

CTransferEngine& CManagerCore::engine() {
  const CMutexLock lock(opening_);
  openQueue();
  return engine_;
}

const CTransferEngine& CManagerCore::engineToRead() {
  const CMutexLock lock(opening_);
  if (queueState_ == QueueState::kUnread &&
      !CZtTransfersGlobalConfig::getInstance()->appFilesPath().empty()) {
    openQueue();
  }
  return engine_;
}

void CManagerCore::openQueue() {
  if (queueState_ == QueueState::kOpen || queueState_ == QueueState::kInMemory) {
    return;
  }
  const std::string folder = CZtTransfersGlobalConfig::getInstance()->appFilesPath();
  log_.open(folder);
  if (folder.empty()) {
    queueState_ = QueueState::kInMemory;
    return;
  }
  engine_.restore(queue_.open(folder + "/" + options_.database));
  queueState_ = QueueState::kOpen;
}

void CManagerCore::cancelGroup(std::int32_t groupId) {
  engine().cancelGroup(groupId);
  queue_.flush(kMaxCancelTime);
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
  engine();
  log_.information("Starting " + options_.engine.activity + "s");
  engine_.start();
  dispatcher_.start();
  sleepGuard_.start();
  pool_.start(kPoolSize);
  loop_.setUserAgent(CZtTransfersGlobalConfig::getInstance()->userAgent());
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

// Another manager may open the queue from here on, so this one reads it anew when it is needed.
// Without a database the queue stays in memory.
void CManagerCore::closeQueue() {
  const CMutexLock lock(opening_);
  if (queueState_ == QueueState::kOpen && queue_.close()) {
    queueState_ = QueueState::kClosed;
  } else if (queueState_ == QueueState::kInMemory && engine_.groups().empty()) {
    queueState_ = QueueState::kUnread;
  }
}

// A file that is reported as completed stays so after a crash, a cancelled group stays away.
void CManagerCore::prepareDelivery(const std::vector<TransferEvent>& events) {
  bool final = false;
  for (const TransferEvent& event : events) {
    if (const auto* group = std::get_if<GroupSnapshot>(&event)) {
      progress_.note(*group);
      final = final || group->cancelled;
    } else {
      final = final || std::get<FileState>(event).state == kFileCompleted;
    }
  }
  if (final) {
    queue_.flush(kMaxFlushTime);
  }
}

std::optional<TimePoint> CManagerCore::tick() {
  statSources();
  CTransferEngine::Work work = engine_.takeWork();
  const bool allBegun = carryOut(work, *runner_);
  sleepGuard_.setTransferring(engine_.isTransferring());
  const auto attempts = runner_->tick();
  const auto report = progress_.tick();
  if (!allBegun) {
    return clock_.now();  // an attempt that ended at once has made room for the next
  }
  return earliest({work.nextDue, attempts, report});
}

// One batch at a time, so that the pool serves transfers in between.
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
