#include "store/stored_queue.h"

#include <utility>

namespace zt_transfers {
namespace {

constexpr std::size_t kMaxGap = 20'000'000;  // files removed in a row

}  // namespace

CStoredQueue::CStoredQueue(std::string threadName, ILog& log,
                           std::function<void(std::int32_t)> arrived,
                           const CQueueWriter::Timing& timing)
    : threadName_(std::move(threadName)),
      log_(log),
      arrived_(std::move(arrived)),
      timing_(timing) {}

CStoredQueue::~CStoredQueue() {
  abandon();
}

std::optional<RestoredQueue> CStoredQueue::open(const std::string& path) {
  file_ = CDatabaseFile::claim(path, log_);
  if (!file_) {
    return std::nullopt;
  }
  RestoredQueue found;
  auto database = file_->open([&](CQueueDatabase& opened) { load(opened, found); });
  if (!database) {
    if (!file_->isNew()) {
      // Its groups could not be told from those that are queued meanwhile.
      file_.reset();
      return std::nullopt;
    }
    found = {};
    store_.clear();
  }
  writer_ = std::make_unique<CQueueWriter>(
      threadName_,
      CQueueWriter::Dependencies{.store = store_, .file = *file_, .log = log_, .arrived = arrived_},
      std::move(database), timing_);
  return found;
}

void CStoredQueue::load(CQueueDatabase& database, RestoredQueue& found) {
  store_.clear();
  found = {.lastGroupId = database.lastGroupId(), .groups = {}, .orphans = {}};
  database.read({.group =
                     [&](const StoredGroup& group) {
                       found.groups.push_back({group, {}, {}, {}});
                       store_.restoreGroup(group.identity.id);
                     },
                 .file =
                     [&](FileRef file, const StoredState& state, std::string_view fileId) {
                       auto& files = found.groups.back().files;
                       if (file.index - files.size() > kMaxGap) {
                         throw CQueueDatabase::CUnusable("a file's index is out of range");
                       }
                       files.resize(file.index, {.phase = FilePhase::kRemoved});
                       files.push_back(state);
                       store_.restoreFile(file, fileId);
                     },
                 .resume =
                     [&](FileRef file, const TransferResume& resume) {
                       if (file.index < found.groups.back().files.size()) {
                         found.groups.back().resumes.emplace_back(file.index, resume);
                         store_.restoreResume(file);
                       }
                     },
                 .failure =
                     [&](FileRef file, const Failure& failure) {
                       if (file.index < found.groups.back().files.size()) {
                         found.groups.back().failures.emplace_back(file.index, failure);
                       }
                     },
                 .orphan = [&](OrphanId id,
                               const Orphan& orphan) { found.orphans.emplace_back(id, orphan); }});
}

void CStoredQueue::flush(std::chrono::milliseconds limit) {
  if (writer_) {
    writer_->flush(limit);
  }
}

bool CStoredQueue::close() {
  if (!writer_) {
    return true;
  }
  if (!writer_->flush()) {
    log_.error("The latest changes of the queue " + file_->path() +
               " are not on disk; they are lost if the program ends now");
    return false;
  }
  abandon();
  return true;
}

void CStoredQueue::abandon() {
  writer_.reset();
  file_.reset();
}

}  // namespace zt_transfers
