#include "store/stored_queue.h"

#include <random>
#include <utility>

namespace zt_transfers {
namespace {

constexpr std::size_t kMaxGap = 20'000'000;  // files removed in a row

// Ids of groups and orphans count up from 1. While those in use cannot be read, new ones begin at
// random far above them, so that those of two such times do not meet either.
std::int32_t idFarAbove() {
  constexpr std::int32_t kFrom = 1 << 30;
  std::random_device random;
  return kFrom + static_cast<std::int32_t>(random() % (kFrom / 2));
}

}  // namespace

void readQueue(CQueueDatabase& database, CQueueCache& store, RestoredQueue& found) {
  found = {.lastGroupId = database.lastGroupId()};
  store.restoreSalt(database.salt());
  database.read({.group =
                     [&](const StoredGroup& group) {
                       found.groups.push_back({group, {}, {}, {}});
                       store.restoreGroup(group.identity.id);
                     },
                 .file =
                     [&](FileRef file, const StoredState& state, std::string_view fileId) {
                       auto& files = found.groups.back().files;
                       if (file.index - files.size() > kMaxGap) {
                         throw CQueueDatabase::CUnusable("a file's index is out of range");
                       }
                       files.resize(file.index, {.phase = FilePhase::kRemoved});
                       files.push_back(state);
                       store.restoreFile(file, fileId);
                     },
                 .resume =
                     [&](FileRef file, const TransferResume& resume) {
                       if (file.index < found.groups.back().files.size()) {
                         found.groups.back().resumes.emplace_back(file.index, resume);
                         store.restoreResume(file);
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

CStoredQueue::CStoredQueue(std::string threadName, ILog& log, Listener listener,
                           const CQueueWriter::Timing& timing)
    : threadName_(std::move(threadName)),
      log_(log),
      listener_(std::move(listener)),
      timing_(timing) {}

CStoredQueue::~CStoredQueue() {
  abandon();
}

RestoredQueue CStoredQueue::open(const std::string& path) {
  store_.clear();
  found_ = {};
  file_ = std::make_unique<CDatabaseFile>(path, timing_.patience, log_);
  auto database = file_->open([this](CQueueDatabase& opened) { load(opened); });
  RestoredQueue found = std::exchange(found_, {});
  if (!database) {
    store_.clear();
    found = {};
    if (!file_->isNew()) {
      found.lastGroupId = idFarAbove();
      found.lastOrphanId = static_cast<OrphanId>(found.lastGroupId);
    }
  }
  writer_ = std::make_unique<CQueueWriter>(
      threadName_,
      CQueueWriter::Dependencies{.store = store_,
                                 .file = *file_,
                                 .log = log_,
                                 .arrived = listener_.arrived,
                                 .load = [this](CQueueDatabase& opened) { load(opened); },
                                 .opened = [this] { listener_.found(std::exchange(found_, {})); }},
      std::move(database), timing_);
  return found;
}

// Other groups may be in the store meanwhile.
void CStoredQueue::load(CQueueDatabase& database) {
  for (const RestoredGroup& before : found_.groups) {
    store_.dropGroup(before.group.identity.id);
  }
  readQueue(database, store_, found_);
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
