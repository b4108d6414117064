#include "simulation/virtual_client.h"

#include <filesystem>
#include <set>
#include <variant>

#include "base/file_url.h"
#include "download/download_runner.h"
#include "upload/upload_runner.h"

namespace zt_transfers::test {
namespace {

constexpr std::chrono::milliseconds kGather{50};
constexpr std::chrono::seconds kReportInterval{1};
constexpr std::size_t kWritten = 4096;
constexpr std::size_t kStats = 256;

std::uint64_t sizeOf(const std::string& url) {
  std::error_code error;
  const auto path = pathOfFileUrl(url);
  const std::uintmax_t size = path ? std::filesystem::file_size(*path, error) : 0;
  return error ? 0 : size;
}

// Whether its first bytes are on the disk. A power cut can take the name of a file that was synced.
bool isResumable(const std::filesystem::path& folder, const TransferResume& resume) {
  if (resume.isUpload()) {
    return false;
  }
  const DownloadResume& download = resume.download();
  return !download.durable.empty() && download.durable.front().begin == 0 &&
         !download.validator.empty() && std::filesystem::exists(folder / download.partialPath);
}

std::set<unsigned> resumableIn(const RestoredQueue& queue, const CQueueCache& store) {
  std::set<unsigned> numbers;
  for (const RestoredGroup& restored : queue.groups) {
    const GroupIdentity& group = restored.group.identity;
    for (const auto& [index, resume] : restored.resumes) {
      if (isResumable(group.folder, resume)) {
        const std::string fileId = store.fileId({group.id, index});
        numbers.insert(static_cast<unsigned>(std::stoul(fileId.substr(1))));
      }
    }
  }
  return numbers;
}

}  // namespace

CVirtualClient::CVirtualClient(CWorld& world, CVirtualServers& servers, CVirtualDisk& disk,
                               Options options)
    : world_(world),
      disk_(disk),
      options_(std::move(options)),
      log_(options_.log),
      database_(std::make_unique<CQueueDatabase>(options_.database)),
      engine_({.activity = options_.uploads ? "upload" : "download",
               .needsMark = false,
               .statsSources = options_.uploads},
              {.clock = world, .store = store_, .events = events_, .log = log_}),
      pool_(world,
            [&disk] {
              return std::chrono::milliseconds(disk.trouble() == DiskTrouble::kSlow ? 30'000 : 20);
            }),
      network_(world, servers, [this] { return tick(); }) {
  RestoredQueue queue;
  readQueue(*database_, store_, queue);
  servers.setResumable(resumableIn(queue, store_));
  store_.record({.changed = [this] { writeSoon(); }, .requested = [this] { readSoon(); }});
  if (options_.uploads) {
    runner_ = std::make_unique<CUploadRunner>(UploadDependencies{network_, pool_, log_, engine_});
  } else {
    runner_ = std::make_unique<CDownloadRunner>(
        CDownloadRunner::Dependencies{network_, pool_, log_, engine_, disk_});
  }
  engine_.setWake([this] { network_.wake(); });
  engine_.setFlush([this] { write(); });
  engine_.restore(std::move(queue));
  engine_.setSettings(options_.settings);
  engine_.start();
  report();
}

CVirtualClient::~CVirtualClient() {
  disk_.setDead(true);
  alive_.reset();
  database_.reset();
  store_.stopRecording();
  runner_->stopAll();
  network_.clearRetired();
  runner_.reset();
  pool_.kill();
  disk_.setDead(false);
}

void CVirtualClient::shutdown() {
  runner_->stopAll();
  network_.clearRetired();
  pool_.stop();
  runner_->syncToDisk();
  engine_.stop();
  write();
}

std::optional<TimePoint> CVirtualClient::tick() {
  ticked_ = true;
  statSources();
  TransferWork work = engine_.takeWork();
  const bool allBegun = carryOut(work, *runner_);
  const auto due = runner_->tick();
  if (!allBegun) {
    return world_.now();
  }
  return due && (!work.nextDue || *due < *work.nextDue) ? due : work.nextDue;
}

void CVirtualClient::statSources() {
  if (statting_ || !engine_.hasPendingSizes()) {
    return;
  }
  statting_ = true;
  pool_.post([this] {
    std::vector<CTransferEngine::FileSize> sizes;
    for (const auto& [file, location] : engine_.takePendingSizes(kStats)) {
      sizes.push_back({file, sizeOf(location)});
    }
    engine_.applySizes(sizes);
    network_.post([this] { statting_ = false; });
  });
}

void CVirtualClient::writeSoon() {
  if (!std::exchange(writing_, true)) {
    world_.after(kGather, [this, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) {
        write();
      }
    });
  }
}

void CVirtualClient::write() {
  writing_ = false;
  while (store_.changesWaiting() != 0) {
    const QueueBatch batch = store_.collect(kWritten);
    database_->write(batch);
    store_.written(batch);
  }
}

void CVirtualClient::readSoon() {
  world_.after(Duration::zero(), [this, alive = std::weak_ptr(alive_)] {
    while (!alive.expired()) {
      const auto range = store_.takeRequest();
      if (!range) {
        return;
      }
      database_->readSpecs(
          range->groupId, range->from, range->to,
          [this](FileRef file, std::string_view spec) { store_.arrive(file, spec); });
      store_.endArrival(*range);
      engine_.specsArrived(range->groupId);
    }
  });
}

// As the thread for events does: what is told was written before.
void CVirtualClient::report() {
  std::vector<TransferEvent> events;
  if (engine_.collectProgress() || std::exchange(ticked_, false)) {
    events = events_.take(Duration::zero());
  }
  if (!events.empty()) {
    write();
  }
  for (const TransferEvent& event : events) {
    options_.told(event);
  }
  world_.after(kReportInterval, [this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) {
      report();
    }
  });
}

}  // namespace zt_transfers::test
