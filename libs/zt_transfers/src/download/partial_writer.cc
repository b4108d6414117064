#include "download/partial_writer.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "download/disk_verdict.h"

namespace zt_transfers {
namespace {

// Limits what a power cut can lose, unless the disk is slower still.
constexpr std::uint64_t kCheckpointBytes = 64ULL * 1024 * 1024;
constexpr std::uint64_t kMinCheckpoint = 1024 * 1024;
constexpr std::chrono::seconds kCheckpointInterval{5};

// Bytes from the beginning without a gap.
std::uint64_t contiguous(const DownloadResume& resume) {
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
      listener_(listener),
      syncedAt_(loop_.clock().now()) {}

void CPartialWriter::whenSettled(Settled settled) {
  settled_ = std::move(settled);
  checkSettled();
}

void CPartialWriter::checkSettled() {
  const bool nothingLeft = batch_.empty() || failure_;
  if (settled_ && !writing_ && !syncing_ && nothingLeft && hashQueue_.idle()) {
    std::exchange(settled_, {})(failure_.has_value());
  }
}

void CPartialWriter::reopen(const DownloadResume& resume) {
  batch_.reopen = resume;
  post();
}

void CPartialWriter::restart(const std::string& validator, std::uint64_t size) {
  for (Chunk& chunk : std::exchange(batch_.chunks, {})) {
    recycle(std::move(chunk));
  }
  for (CHashQueue::Entry& entry : hashQueue_.clear()) {
    recycle(std::move(entry.chunk));
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

void CPartialWriter::enter(State next) {
  if (!mayFollow(state_, next)) {
    throw std::logic_error("a partial file's writer in state " +
                           std::to_string(static_cast<unsigned>(state_)) + " cannot enter state " +
                           std::to_string(static_cast<unsigned>(next)));
  }
  state_ = next;
  if (next == State::kFailed) {
    hashQueue_.close();
  } else if (next == State::kClosed) {
    hashQueue_.endReadBack();
  }
}

void CPartialWriter::close() {
  if (state_ != State::kFinishing && state_ != State::kClosed) {
    enter(State::kClosed);
    post();
  }
}

std::optional<CPartialWriter::CompleteBody> CPartialWriter::takeCompleteBody() {
  const bool isWhole = state_ == State::kUnused && batch_.restart && !batch_.reopen &&
                       batch_.chunks.size() <= 1 &&
                       (batch_.chunks.empty() || batch_.chunks.front().offset == 0);
  if (!isWhole) {
    return std::nullopt;
  }
  CompleteBody whole{.validator = std::move(batch_.restart->validator), .content = {}};
  if (!batch_.chunks.empty()) {
    whole.content = std::move(batch_.chunks.front());
  }
  batch_ = {};
  enter(State::kClosed);
  return whole;
}

void CPartialWriter::finish(Last last) {
  enter(State::kFinishing);
  batch_.last = std::move(last);
  post();
}

void CPartialWriter::post() {
  if (mayWrite()) {
    postWrite();
  }
}

bool CPartialWriter::mayWrite() const {
  // After a failure only the last job runs, to report it.
  if (writing_ || batch_.empty() || (failure_ && !batch_.last)) {
    return false;
  }
  return !batch_.alone() || (!syncing_ && hashQueue_.idle());
}

// Every job holds this writer, so that received bytes are written even after the attempt has ended.
void CPartialWriter::postWrite() {
  if (state_ == State::kUnused) {
    enter(State::kOpen);
  }
  writing_ = true;
  batch_.failure = failure_;
  auto batch = std::make_shared<Batch>(std::exchange(batch_, {}));
  if (batch->restart) {
    hashQueue_.restart(0);
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
    const auto failure = failureOf([&] { self->file_->checkpoint(); });
    self->progress_->setResume(self->file_->resume());
    self->loop_.post([self, failure] { self->takeSynced(failure); });
  });
}

CPartialWriter::Written CPartialWriter::work(Batch& batch) {
  Written written;
  written.failure = batch.failure;
  if (!written.failure) {
    written.failure = failureOf([&] { carryOut(batch, written); });
  }
  written.resume = file_->resume();
  progress_->setResume(written.resume);
  written.chunks = std::move(batch.chunks);
  if (batch.last) {
    batch.last(file_, written.failure);
  } else if (!written.failure && file_->open() && file_->hashes() &&
             hashQueue_.add(written.chunks, contiguous(written.resume))) {
    postHash();
  }
  return written;
}

void CPartialWriter::carryOut(Batch& batch, Written& written) {
  const bool wasOpen = file_->open();
  if (batch.reopen) {
    reopened_ = true;
    written.found = file_->reopen(*batch.reopen);
    hashQueue_.restart(file_->hashed());
  }
  if (batch.restart) {
    if ((reopened_ || wasOpen) && !withdraw()) {
      throw std::runtime_error("it was stopped before another version began");
    }
    file_->restart(batch.restart->validator, batch.restart->size);
  }
  for (const Chunk& chunk : batch.chunks) {
    file_->write(chunk.offset, chunk.data.get(), chunk.size);
    // The last bytes are not queued for hashing.
    if (batch.last && file_->hashes() && file_->hashed() == chunk.offset) {
      file_->hash(chunk.data.get(), chunk.size);
    }
  }
  written.made = !wasOpen && file_->open();
}

// Invalidates the stored resume record before bytes of a new version are written. False when the
// attempt was stopped meanwhile: the record stays in use, so the file must not change.
bool CPartialWriter::withdraw() {
  DownloadResume nothing = file_->resume();
  nothing.written.clear();
  nothing.durable.clear();
  nothing.finalName.clear();
  progress_->setResume(nothing);
  if (!observer_.onAttemptCheckpoint(attemptId_)) {
    return false;
  }
  observer_.keepDurably({attemptId_});
  return true;
}

// Hashes one step and posts the next one itself, because the network thread may be busy.
void CPartialWriter::hashNext() {
  auto entries = std::make_shared<CHashQueue::Entries>(hashQueue_.take());
  const auto failure = failureOf([&] {
    for (const CHashQueue::Entry& entry : *entries) {
      if (entry.inMemory()) {
        file_->hash(entry.chunk.data.get(), entry.chunk.size);
      } else {
        file_->hashWritten(entry.end);
      }
    }
  });
  if (failure) {
    hashQueue_.close();
  }
  if (hashQueue_.done()) {
    postHash();
  }
  loop_.post(
      [self = shared_from_this(), entries, failure] { self->takeHashed(*entries, failure); });
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
  if (written.failure) {
    fail(*written.failure);
    return;
  }
  if (reports() && !syncing_ && !batch_.alone() && checkpointDue()) {
    postSync();
  }
  post();
  // Each of these calls may close the writer. A new file is recorded at once so that it is found
  // again.
  if (reports() && written.made) {
    listener_.onCheckpoint();
  }
  if (reports() && written.found) {
    listener_.onReopened(*written.found, written.resume);
  }
  if (reports() && !full()) {
    listener_.onWriterReady();
  }
  checkSettled();
}

void CPartialWriter::takeHashed(CHashQueue::Entries& entries,
                                const std::optional<AttemptOutcome>& failure) {
  for (CHashQueue::Entry& entry : entries) {
    recycle(std::move(entry.chunk));
  }
  if (failure) {
    fail(*failure);
    return;
  }
  post();
  if (reports() && !full()) {
    listener_.onWriterReady();
  }
  checkSettled();
}

void CPartialWriter::takeSynced(const std::optional<AttemptOutcome>& failure) {
  syncing_ = false;
  syncedAt_ = loop_.clock().now();
  if (failure) {
    fail(*failure);
    return;
  }
  post();
  if (reports()) {
    listener_.onCheckpoint();
  }
  checkSettled();
}

void CPartialWriter::fail(const AttemptOutcome& failure) {
  failure_ = failure;
  if (reports()) {
    enter(State::kFailed);
    listener_.onWriterFailed(failure);
  } else {
    hashQueue_.close();
    post();
  }
  checkSettled();
}

bool CPartialWriter::checkpointDue() const {
  const std::uint64_t since = written_ - std::min(written_, durable_);
  return since >= kCheckpointBytes ||
         (since >= kMinCheckpoint && loop_.clock().now() - syncedAt_ >= kCheckpointInterval);
}

void CPartialWriter::recycle(Chunk chunk) {
  held_ -= chunk.size;
  chunks_.giveBack(std::move(chunk));
}

}  // namespace zt_transfers
