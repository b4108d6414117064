#include "upload/upload_source.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace zt_transfers {

CUploadSource::CUploadSource(IHttpTransport& loop, IExecutor& pool, ReadRequest readRequest,
                             IListener& listener)
    : loop_(loop),
      pool_(pool),
      listener_(&listener),
      cached_(!readRequest.hash),
      reader_(std::make_shared<CSourceReader>(std::move(readRequest))) {}

void CUploadSource::open() {
  post(true);
}

std::size_t CUploadSource::available() const {
  return chunks_.empty() ? 0 : chunks_.front().size - offset_;
}

std::size_t CUploadSource::take(char* to, std::size_t room) {
  const std::size_t taken = std::min(room, available());
  if (taken == 0) {
    return 0;
  }
  std::memcpy(to, chunks_.front().data.get() + offset_, taken);
  offset_ += taken;
  passOn();
  return taken;
}

std::string_view CUploadSource::takeAll() {
  if (offset_ != 0 || !inFirstChunk_ || chunks_.empty() || !chunks_.front().last) {
    return {};
  }
  const SourceChunk& chunk = chunks_.front();
  offset_ = chunk.size;
  return {chunk.data.get(), chunk.size};
}

void CUploadSource::skip() {
  while (available() != 0) {
    offset_ = chunks_.front().size;
    passOn();
  }
}

// Drops the first chunk once it is used up. The last one is kept.
void CUploadSource::passOn() {
  if (available() == 0 && !chunks_.front().last) {
    spare_ = std::move(chunks_.front().data);
    chunks_.pop_front();
    offset_ = 0;
    inFirstChunk_ = false;
    readAhead();
  }
}

bool CUploadSource::rewind() {
  if (inFirstChunk_) {
    offset_ = 0;
  }
  return inFirstChunk_;
}

void CUploadSource::readAhead() {
  if (reading_ || readAll_ || chunks_.size() >= kReadAhead) {
    return;
  }
  if (chunks_.empty()) {
    cached_ = takeCached();
  }
  if (!cached_) {
    post(false);
  }
}

// Saves two thread switches for each chunk, and keeps it in this core's cache.
bool CUploadSource::takeCached() {
  SourceChunk chunk;
  chunk.data = std::move(spare_);
  const bool taken = reader_->readCached(chunk);
  if (taken) {
    chunks_.push_back(std::move(chunk));
  } else {
    spare_ = std::move(chunk.data);
  }
  return taken;
}

void CUploadSource::post(bool open) {
  reading_ = true;
  const auto result = std::make_shared<Result>();
  result->opened = open;
  result->chunk.data = std::move(spare_);
  // The job owns the reader, as this source may be destroyed first; the source itself is looked up
  // on the loop's thread only.
  pool_.post([&loop = loop_, reader = reader_, self = weak_from_this(), result] {
    try {
      if (result->opened) {
        result->failure = reader->open();
        result->version = reader->version();
      }
      if (!result->failure) {
        result->failure = reader->readNext(result->chunk);
      }
    } catch (const std::exception& error) {
      result->failure = AttemptOutcome::retry(error.what(), failure::kSourceUnreadable);
    }
    loop.post([self, result] {
      if (const auto source = self.lock()) {
        source->arrive(*result);
      }
    });
  });
}

void CUploadSource::arrive(Result& result) {
  reading_ = false;
  if (listener_ == nullptr) {
    return;
  }
  if (result.failure) {
    listener_->onSourceFailed(*result.failure);
    return;
  }
  readAll_ = result.chunk.last;
  md5_ = std::move(result.chunk.md5);
  chunks_.push_back(std::move(result.chunk));
  if (result.opened) {
    listener_->onSourceOpened(result.version);
  } else {
    listener_->onSourceReady();
  }
  if (listener_ != nullptr) {
    readAhead();  // not if the first chunk was enough
  }
}

}  // namespace zt_transfers
