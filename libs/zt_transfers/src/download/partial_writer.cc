#include "download/partial_writer.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "download/file_trouble.h"

namespace zt_transfers {
namespace {

// What a power cut may cost, unless the disk is slower still.
constexpr std::uint64_t kCheckpointBytes = 64ULL * 1024 * 1024;
constexpr std::uint64_t kCheckpointLeast = 1024 * 1024;
constexpr std::chrono::seconds kCheckpointInterval{5};

}  // namespace

CPartialWriter::CPartialWriter(CHttpLoop& loop, CWorkerPool& pool,
                               std::shared_ptr<CPartialFile> file,
                               std::shared_ptr<JobProgress> progress, IListener& listener)
    : loop_(loop),
      pool_(pool),
      file_(std::move(file)),
      progress_(std::move(progress)),
      listener_(&listener) {}

void CPartialWriter::reopen(const DownloadResume& resume) {
  batch_.reopen = resume;
  post();
}

void CPartialWriter::restart(const std::string& validator, std::uint64_t size) {
  for (const Chunk& chunk : batch_.chunks) {
    queued_ -= chunk.size;
  }
  batch_.chunks.clear();
  batch_.restart = {validator, size};
}

CPartialWriter::Chunk CPartialWriter::chunk(std::uint64_t wanted) {
  if (!spare_.empty()) {
    Chunk chunk = std::move(spare_.back());
    spare_.pop_back();
    return chunk;
  }
  Chunk chunk;
  chunk.capacity = static_cast<std::size_t>(std::clamp<std::uint64_t>(wanted, 1, kChunk));
  chunk.data.reset(new char[chunk.capacity]);
  return chunk;
}

void CPartialWriter::write(Chunk chunk) {
  add(std::move(chunk));
  post();
}

void CPartialWriter::add(Chunk chunk) {
  queued_ += chunk.size;
  batch_.chunks.push_back(std::move(chunk));
}

void CPartialWriter::close() {
  listener_ = nullptr;
  post();
}

void CPartialWriter::finish(Last last) {
  listener_ = nullptr;
  batch_.last = std::move(last);
  post();
}

void CPartialWriter::post() {
  // A file that takes no more is only waited for to be told so.
  if (working_ || batch_.empty() || (trouble_ && !batch_.last)) {
    return;
  }
  working_ = true;
  batch_.trouble = trouble_;
  auto batch = std::make_shared<Batch>(std::exchange(batch_, {}));
  // The job holds this writer, so that what was handed over gets written when nobody waits for it.
  pool_.post([self = shared_from_this(), batch] {
    auto result = std::make_shared<Result>(self->work(*batch));
    self->loop_.post([self, result] { self->take(*result); });
  });
}

CPartialWriter::Result CPartialWriter::work(Batch& batch) {
  Result result;
  result.trouble = batch.trouble;
  try {
    if (!batch.trouble) {
      carryOut(batch, result);
    }
  } catch (const std::exception& error) {
    result.trouble = judgeFileTrouble(error);
  }
  result.resume = file_->resume();
  progress_->setResume(result.resume);
  if (batch.last) {
    batch.last(file_, result.trouble);
  }
  result.spare = std::move(batch.chunks);
  return result;
}

void CPartialWriter::carryOut(Batch& batch, Result& result) {
  const bool wasOpen = file_->open();
  if (batch.reopen) {
    result.found = file_->reopen(*batch.reopen);
  }
  if (batch.restart) {
    file_->restart(batch.restart->validator, batch.restart->size);
    durable_ = 0;
  }
  for (const Chunk& chunk : batch.chunks) {
    file_->write(chunk.offset, chunk.data.get(), chunk.size);
  }
  if (batch.last || !file_->open()) {
    return;
  }
  // A new file is worth a note at once, so that it is found again.
  result.checkpoint = !wasOpen;
  if (checkpointDue()) {
    file_->checkpoint();
    durable_ = lengthOf(file_->resume().durable);
    syncedAt_ = std::chrono::steady_clock::now();
    result.checkpoint = true;
  }
}

bool CPartialWriter::checkpointDue() const {
  const std::uint64_t since = lengthOf(file_->resume().written) - durable_;
  return since >= kCheckpointBytes ||
         (since >= kCheckpointLeast &&
          std::chrono::steady_clock::now() - syncedAt_ >= kCheckpointInterval);
}

void CPartialWriter::take(Result& result) {
  working_ = false;
  for (Chunk& chunk : result.spare) {
    queued_ -= chunk.size;
    chunk.size = 0;
    if (chunk.capacity == kChunk && spare_.size() * kChunk < kMostQueued) {
      spare_.push_back(std::move(chunk));
    }
  }
  trouble_ = result.trouble;
  post();
  // The listener may go with any of these calls, and with it this writer's last owner but `self`.
  if (listener_ != nullptr && result.checkpoint) {
    listener_->onCheckpoint();
  }
  if (listener_ != nullptr && result.trouble) {
    listener_->onWriterFailed(*result.trouble);
    return;
  }
  if (listener_ != nullptr && result.found) {
    listener_->onReopened(*result.found, result.resume);
  }
  if (listener_ != nullptr && idle()) {
    listener_->onWriterIdle();
  }
  if (listener_ != nullptr && !full()) {
    listener_->onWriterReady();
  }
}

}  // namespace zt_transfers
