#include "upload/upload_source.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

namespace zt_transfers {

CUploadSource::CUploadSource(CHttpLoop& loop, CWorkerPool& pool, std::string path, bool hash,
                             IListener& listener)
    : loop_(loop),
      pool_(pool),
      listener_(&listener),
      reader_(std::make_shared<CSourceReader>(std::move(path), hash)) {}

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
  if (available() == 0 && !chunks_.front().last) {
    chunks_.pop_front();
    offset_ = 0;
    inFirstChunk_ = false;
    readAhead();
  }
  return taken;
}

bool CUploadSource::rewind() {
  if (inFirstChunk_) {
    offset_ = 0;
  }
  return inFirstChunk_;
}

void CUploadSource::readAhead() {
  if (!reading_ && !readAll_ && chunks_.size() < kReadAhead) {
    post(false);
  }
}

void CUploadSource::post(bool open) {
  reading_ = true;
  // The reader goes along, as this source may be gone before the job is through; it is looked
  // for again on the loop's thread only.
  pool_.post([&loop = loop_, reader = reader_, self = weak_from_this(), open] {
    const auto result = std::make_shared<Result>();
    try {
      if (open) {
        result->opened = true;
        result->problem = reader->open();
        result->size = reader->size();
      }
      if (!result->problem) {
        result->problem = reader->readNext(result->chunk);
      }
    } catch (const std::exception& error) {
      result->problem = error.what();
    }
    loop.post([self, result] {
      if (const auto source = self.lock()) {
        source->take(*result);
      }
    });
  });
}

void CUploadSource::take(Result& result) {
  reading_ = false;
  if (listener_ == nullptr) {
    return;
  }
  if (result.problem) {
    listener_->onSourceFailed(*result.problem);
    return;
  }
  readAll_ = result.chunk.last;
  md5_ = std::move(result.chunk.md5);
  chunks_.push_back(std::move(result.chunk));
  readAhead();
  if (result.opened) {
    listener_->onSourceOpened(result.size);
  } else {
    listener_->onSourceReady();
  }
}

}  // namespace zt_transfers
