#include "upload/source_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "base/file_status.h"
#include "upload/page_cache.h"
#include "upload/source_version.h"

namespace zt_transfers {
namespace {

void makeRoomIn(SourceChunk& chunk, std::size_t size) {
  if (!chunk.data) {
    chunk.data.reset(new char[std::max<std::size_t>(size, 1)]);
  }
}

}  // namespace

std::optional<AttemptOutcome> CSourceReader::open() {
  // O_NONBLOCK, as opening a pipe would block; regular files ignore it.
  file_ = CUniqueFd(::open(readRequest_.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file_.valid()) {
    return outcomeOfSource(errno, readRequest_.path, "cannot open the file");
  }
  struct stat status {};
  if (::fstat(file_.get(), &status) != 0) {
    return outcomeOfSource(errno, readRequest_.path, "cannot read the file's status");
  }
  if (!S_ISREG(status.st_mode)) {
    return AttemptOutcome::final("it is not a regular file", failure::kSourceUnreadable);
  }
  version_ = versionOf(status);
  if (readRequest_.version && !readRequest_.version->sameContent(version_)) {
    return AttemptOutcome::final("the file changed while it was sent", failure::kSourceChanged);
  }
  const ByteSpan span = readRequest_.span.value_or(ByteSpan{0, version_.size});
  offset_ = span.begin;
  end_ = span.end;
  inMemory_ = liesInMemory(file_.get());
  if (readRequest_.hash) {
    md5_.emplace();
  }
  if (span.length() > kChunk) {
    expectSequentialRead(file_.get(), span.begin, span.length());
  }
  return std::nullopt;
}

std::optional<AttemptOutcome> CSourceReader::readNext(SourceChunk& chunk) {
  const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, end_ - offset_));
  makeRoomIn(chunk, wanted);
  chunk.size = 0;
  while (chunk.size < wanted) {
    const ssize_t got = ::pread(file_.get(), chunk.data.get() + chunk.size, wanted - chunk.size,
                                static_cast<off_t>(offset_ + chunk.size));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      return outcomeOfSource(errno, readRequest_.path, "cannot read the file");
    }
    if (got == 0) {
      return AttemptOutcome::final("the file became shorter while it was sent",
                                   failure::kSourceChanged);
    }
    chunk.size += static_cast<std::size_t>(got);
  }
  offset_ += chunk.size;
  if (md5_) {
    md5_->add(chunk.data.get(), chunk.size);
  }
  chunk.last = offset_ == end_;
  if (!chunk.last) {
    return std::nullopt;
  }
  if (md5_) {
    chunk.md5 = md5_->finish();
  }
  return changeSince(version_, readRequest_.path);
}

bool CSourceReader::readCached(SourceChunk& chunk) {
  if (md5_ || end_ - offset_ <= kChunk) {
    return false;
  }
  makeRoomIn(chunk, kChunk);
  const ssize_t got =
      inMemory_ ? ::pread(file_.get(), chunk.data.get(), kChunk, static_cast<off_t>(offset_))
                : readFromMemory(file_.get(), chunk.data.get(), kChunk, offset_);
  if (got <= 0) {
    return false;
  }
  chunk.size = static_cast<std::size_t>(got);
  offset_ += chunk.size;
  return true;
}

}  // namespace zt_transfers
