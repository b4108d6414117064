#include "download/partial_writer.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "download/disk_verdict.h"

namespace zt_transfers {
namespace {

// What a power cut may cost, unless the disk is slower still.
constexpr std::uint64_t kCheckpointBytes = 64ULL * 1024 * 1024;
constexpr std::uint64_t kMinCheckpoint = 1024 * 1024;
constexpr std::chrono::seconds kCheckpointInterval{5};

std::uint64_t withoutGap(const DownloadResume& resume) {
  const bool begun = !resume.written.empty() && resume.written.front().begin == 0;
  return begun ? resume.written.front().end : 0;
}

}  // namespace

CPartialWriter::CPartialWriter(const Dependencies& dependencies, AttemptId attemptId,
                               std::shared_ptr<CPartialFile> file,
                               std::shared_ptr<AttemptProgress> progress, IListener& listener)
    : loop_(dependencies.loop),
      pool_(dependencies.pool),
      chunks_(dependencies.chunks),
      observer_(dependencies.observer),
      attemptId_(attemptId),
      file_(std::move(file)),
      progress_(std::move(progress)),
      listener_(&listener) {}

void CPartialWriter::reopen(const DownloadResume& resume) {
  batch_.reopen = resume;
  post();
}

void CPartialWriter::restart(const std::string& validator, std::uint64_t size) {
  for (Chunk& chunk : std::exchange(batch_.chunks, {})) {
    recycle(std::move(chunk));
  }
  for (CHashQueue::Piece& piece : hashQueue_.clear()) {
    recycle(std::move(piece.chunk));
  }
  batch_.restart = {validator, size};
}

void CPartialWriter::endInput() {
  if (batch_.chunks.empty()) {
    batch_.restart.reset();
  }
}

void CPartialWriter::write(Chunk chunk) {
  add(std::move(chunk));
  post();
}

void CPartialWriter::add(Chunk chunk) {
  held_ += chunk.size;
  batch_.chunks.push_back(std::move(chunk));
}

void CPartialWriter::close() {
  listener_ = nullptr;
  if (!batch_.last) {
    hashQueue_.close();  // who goes on with the file begins to hash anew
  }
  post();
}

std::optional<CPartialWriter::CompleteBody> CPartialWriter::takeCompleteBody() {
  const bool isWhole = !begun_ && batch_.restart && !batch_.reopen && batch_.chunks.size() <= 1 &&
                       (batch_.chunks.empty() || batch_.chunks.front().offset == 0);
  if (!isWhole) {
    return std::nullopt;
  }
  CompleteBody whole{.validator = std::move(batch_.restart->validator), .content = {}};
  if (!batch_.chunks.empty()) {
    whole.content = std::move(batch_.chunks.front());
  }
  listener_ = nullptr;
  batch_ = {};
  return whole;
}

void CPartialWriter::finish(Last last) {
  listener_ = nullptr;
  batch_.last = std::move(last);
  post();
}

void CPartialWriter::post() {
  if (mayWrite()) {
    postWrite();
  }
}

bool CPartialWriter::mayWrite() const {
  // A file that takes no more is only waited for to be told so.
  if (writing_ || batch_.empty() || (trouble_ && !batch_.last)) {
    return false;
  }
  return !batch_.alone() || (!syncing_ && hashQueue_.idle());
}

// Every job holds this writer, so that what was handed over gets written when nobody waits for it.
void CPartialWriter::postWrite() {
  writing_ = true;
  begun_ = true;
  batch_.trouble = trouble_;
  auto batch = std::make_shared<Batch>(std::exchange(batch_, {}));
  if (batch->restart) {
    hashQueue_.restart();
    written_ = durable_ = 0;
  }
  pool_.post([self = shared_from_this(), batch] {
    auto written = std::make_shared<Written>(self->work(*batch));
    self->loop_.post([self, written] { self->take(*written); });
  });
}

void CPartialWriter::postHash() {
  pool_.post([self = shared_from_this()] { self->hashNext(); });
}

void CPartialWriter::postSync() {
  syncing_ = true;
  durable_ = written_;
  pool_.post([self = shared_from_this()] {
    const auto trouble = failureOf([&] { self->file_->checkpoint(); });
    self->progress_->setResume(self->file_->resume());
    self->loop_.post([self, trouble] { self->takeSynced(trouble); });
  });
}

CPartialWriter::Written CPartialWriter::work(Batch& batch) {
  Written written;
  written.trouble = batch.trouble;
  if (!written.trouble) {
    written.trouble = failureOf([&] { carryOut(batch, written); });
  }
  written.resume = file_->resume();
  progress_->setResume(written.resume);
  written.chunks = std::move(batch.chunks);
  if (batch.last) {
    batch.last(file_, written.trouble);
  } else if (!written.trouble && file_->open() && file_->hashes() &&
             hashQueue_.add(written.chunks, withoutGap(written.resume))) {
    postHash();
  }
  return written;
}

void CPartialWriter::carryOut(Batch& batch, Written& written) {
  const bool wasOpen = file_->open();
  if (batch.reopen) {
    reopened_ = true;
    written.found = file_->reopen(*batch.reopen);
  }
  if (batch.restart) {
    if ((reopened_ || wasOpen) && !withdraw()) {
      throw std::runtime_error("it was stopped before another version began");
    }
    file_->restart(batch.restart->validator, batch.restart->size);
  }
  for (const Chunk& chunk : batch.chunks) {
    file_->write(chunk.offset, chunk.data.get(), chunk.size);
    // Nobody hashes it later.
    if (batch.last && file_->hashes() && file_->hashed() == chunk.offset) {
      file_->hash(chunk.data.get(), chunk.size);
    }
  }
  written.made = !wasOpen && file_->open();
}

// Has nobody take the bytes of another version for those that the file has held so far: neither
// after a crash, for which the note on disk goes first, nor after a stop, which has taken the note
// over: false, and the file must stay what it is.
bool CPartialWriter::withdraw() {
  DownloadResume nothing = file_->resume();
  nothing.written.clear();
  nothing.durable.clear();
  progress_->setResume(nothing);
  if (!observer_.onAttemptCheckpoint(attemptId_)) {
    return false;
  }
  observer_.keepDurably({attemptId_});
  return true;
}

// One turn of the hash, which sees to the next one by itself: the network thread may be busy.
void CPartialWriter::hashNext() {
  auto pieces = std::make_shared<CHashQueue::Pieces>(hashQueue_.take());
  const auto trouble = failureOf([&] {
    for (const CHashQueue::Piece& piece : *pieces) {
      if (piece.inMemory()) {
        file_->hash(piece.chunk.data.get(), piece.chunk.size);
      } else {
        file_->hashWritten(piece.end);
      }
    }
  });
  if (trouble) {
    hashQueue_.close();
  }
  if (hashQueue_.done()) {
    postHash();
  }
  loop_.post([self = shared_from_this(), pieces, trouble] { self->takeHashed(*pieces, trouble); });
}

void CPartialWriter::take(Written& written) {
  writing_ = false;
  written_ = lengthOf(written.resume.written);
  if (written.found) {
    durable_ = lengthOf(written.resume.durable);
  }
  for (Chunk& chunk : written.chunks) {
    recycle(std::move(chunk));
  }
  if (written.trouble) {
    fail(*written.trouble);
    return;
  }
  if (listener_ != nullptr && !syncing_ && !batch_.alone() && checkpointDue()) {
    postSync();
  }
  post();
  // The listener may go with any of these calls, and with it this writer's last owner but `self`.
  // A new file is worth a note at once, so that it is found again.
  if (listener_ != nullptr && written.made) {
    listener_->onCheckpoint();
  }
  if (listener_ != nullptr && written.found) {
    listener_->onReopened(*written.found, written.resume);
  }
  if (listener_ != nullptr && idle()) {
    listener_->onWriterIdle();
  }
  if (listener_ != nullptr && !full()) {
    listener_->onWriterReady();
  }
}

void CPartialWriter::takeHashed(CHashQueue::Pieces& pieces,
                                const std::optional<AttemptOutcome>& trouble) {
  for (CHashQueue::Piece& piece : pieces) {
    recycle(std::move(piece.chunk));
  }
  if (trouble) {
    fail(*trouble);
    return;
  }
  post();
  if (listener_ != nullptr && !full()) {
    listener_->onWriterReady();
  }
}

void CPartialWriter::takeSynced(const std::optional<AttemptOutcome>& trouble) {
  syncing_ = false;
  syncedAt_ = std::chrono::steady_clock::now();
  if (trouble) {
    fail(*trouble);
    return;
  }
  post();
  if (listener_ != nullptr) {
    listener_->onCheckpoint();
  }
}

void CPartialWriter::fail(const AttemptOutcome& trouble) {
  trouble_ = trouble;
  hashQueue_.close();
  post();
  if (listener_ != nullptr) {
    listener_->onWriterFailed(trouble);
  }
}

bool CPartialWriter::checkpointDue() const {
  const std::uint64_t since = written_ - std::min(written_, durable_);
  return since >= kCheckpointBytes ||
         (since >= kMinCheckpoint &&
          std::chrono::steady_clock::now() - syncedAt_ >= kCheckpointInterval);
}

void CPartialWriter::recycle(Chunk chunk) {
  held_ -= chunk.size;
  chunks_.giveBack(std::move(chunk));
}

}  // namespace zt_transfers
