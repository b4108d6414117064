#include "download/partial_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "base/file_status.h"
#include "base/system_failure.h"
#include "download/file_trouble.h"
#include "download/new_folders.h"
#include "download/reserve_room.h"
#include "download/target_folder.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kReserveFrom = 1024 * 1024;  // smaller files are written at once

void syncData(int file) {
#if defined(__APPLE__)
  const int failed = ::fsync(file);
#else
  const int failed = ::fdatasync(file);
#endif
  if (failed != 0) {
    failWithErrno("cannot write the file to disk");
  }
}

// Has the disk begin with what is complete of it, so that a sync finds little left to do.
void beginWriteback(int file, std::uint64_t begin, std::uint64_t end) {
#if defined(__linux__)
  constexpr std::uint64_t kWindow = 8ULL * 1024 * 1024;
  const std::uint64_t from = begin / kWindow * kWindow;
  const std::uint64_t to = end / kWindow * kWindow;
  if (from < to) {
    ::sync_file_range(file, static_cast<off_t>(from), static_cast<off_t>(to - from),
                      SYNC_FILE_RANGE_WRITE);
  }
#else
  static_cast<void>(file);
  static_cast<void>(begin);
  static_cast<void>(end);
#endif
}

}  // namespace

CPartialFile::~CPartialFile() {
  // Nothing worth keeping is in an empty one.
  if (discarded_ || resume_.written.empty()) {
    place_.unlink();
  }
}

void CPartialFile::discardNow() {
  discarded_ = true;
  place_.unlink();
}

CPartialFile::Found CPartialFile::reopen(const DownloadResume& resume) {
  if (!place_.contains(resume.partialPath)) {
    return Found::kNothing;
  }
  resume_ = resume;
  if (!place_.openFolder(MissingFolders::kFail)) {
    resume_ = {};
    return Found::kNothing;
  }
  CUniqueFd file = place_.reopen(resume);
  if (!file.valid() && place_.isFinalized(resume)) {
    place_.syncFolder();
    return Found::kFinalized;
  }
  resume_ = {};
  if (!file.valid()) {
    return Found::kNothing;
  }
  adopt(std::move(file));
  resume_.validator = resume.validator;
  resume_.size = resume.size;
  const auto there = static_cast<std::uint64_t>(statusOf(file_.get()).st_size);
  for (const ByteSpan& span : resume.written) {
    addSpan(resume_.written, {std::min(span.begin, there), std::min(span.end, there)});
  }
  for (const ByteSpan& span : resume.durable) {
    addSpan(resume_.durable, {std::min(span.begin, there), std::min(span.end, there)});
  }
  return Found::kPartial;
}

void CPartialFile::create(std::uint64_t size) {
  if (file_.valid()) {
    return;
  }
  place_.openFolder(MissingFolders::kMake);
  adopt(place_.make());
  reserve(size);
}

void CPartialFile::adopt(CUniqueFd file) {
  file_ = std::move(file);
  resume_.partialPath = place_.path();
  resume_.inode = place_.inode();
}

void CPartialFile::restart(const std::string& validator, std::uint64_t size) {
  resume_.validator = validator;
  resume_.size = size;
  resume_.written.clear();
  resume_.durable.clear();
  hash_.reset();
  digest_.reset();
  if (file_.valid()) {
    if (::ftruncate(file_.get(), 0) != 0) {
      failWithErrno("cannot empty the partial file");
    }
    reserve(size);
  }
}

void CPartialFile::write(std::uint64_t offset, const char* data, std::size_t size) {
  create(resume_.size);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t put =
        ::pwrite(file_.get(), data + done, size - done, static_cast<off_t>(offset + done));
    if (put < 0 && errno == EINTR) {
      continue;
    }
    if (put <= 0) {
      noteWritten({offset, offset + done});
      failWithErrno("cannot write to the file");
    }
    done += static_cast<std::size_t>(put);
  }
  noteWritten({offset, offset + size});
  beginWriteback(file_.get(), offset, offset + size);
}

void CPartialFile::noteWritten(ByteSpan span) {
  const std::lock_guard lock(mutex_);
  addSpan(resume_.written, span);
}

void CPartialFile::noteSynced() {
  const std::lock_guard lock(mutex_);
  resume_.durable = resume_.written;
}

DownloadResume CPartialFile::resume() const {
  const std::lock_guard lock(mutex_);
  return resume_;
}

CContentHash& CPartialFile::openHash() {
  if (!hash_) {
    hash_.emplace();
  }
  return *hash_;
}

void CPartialFile::checkpoint() {
  if (!file_.valid()) {
    return;
  }
  // What is written while it syncs may or may not get there.
  ByteSpans written = resume().written;
  syncData(file_.get());
  const std::lock_guard lock(mutex_);
  resume_.durable = std::move(written);
}

std::optional<std::string> CPartialFile::verify(std::uint64_t size) {
  create(size);
  resume_.size = size;
  const auto there = static_cast<std::uint64_t>(statusOf(file_.get()).st_size);
  if (there != size || lengthOf(resume_.written) != size) {
    return "the partial file has " + std::to_string(there) + " bytes instead of " +
           std::to_string(size);
  }
  if (!hashes()) {
    return std::nullopt;
  }
  const std::string found = digest(size);
  if (found != plan_.md5) {
    return "its content has the MD5 digest " + found + " instead of " + plan_.md5;
  }
  return std::nullopt;
}

std::string CPartialFile::digest(std::uint64_t size) {
  if (digest_) {
    return *digest_;
  }
  hashWritten(size);
  std::string digest = hash_->finish();
  hash_.reset();
  return digest;
}

void CPartialFile::sync(bool alone) {
  if (plan_.modified != 0) {
    constexpr std::uint64_t kMilliseconds = 1000;
    constexpr long kNanoseconds = 1'000'000;
    timespec modified{};
    modified.tv_sec = static_cast<time_t>(plan_.modified / kMilliseconds);
    modified.tv_nsec = static_cast<long>(plan_.modified % kMilliseconds) * kNanoseconds;
    const std::array<timespec, 2> times{modified, modified};
    // A file system that cannot keep such a time is no reason to lose the file.
    ::futimens(file_.get(), times.data());
  }
  if (alone && CNewFolders::shared().latest(statusOf(file_.get()).st_dev) != 0) {
    syncFileSystem();
    checkWritten();
  } else if (alone && ::fsync(file_.get()) != 0) {
    failWithErrno("cannot write the file to disk");
  }
}

bool CPartialFile::syncFileSystem() const {
#if defined(__linux__)
  CNewFolders& folders = CNewFolders::shared();
  const dev_t device = statusOf(file_.get()).st_dev;
  const std::uint64_t made = folders.latest(device);
  if (::syncfs(file_.get()) != 0) {
    failWithErrno("cannot write the file to disk");
  }
  folders.noteSynced(device, made);
  return true;
#else
  if (::fsync(file_.get()) != 0) {
    failWithErrno("cannot write the file to disk");
  }
  return false;
#endif
}

void CPartialFile::checkWritten() const {
#if defined(__linux__)
  // Once all is written there is nothing to wait for.
  if (::sync_file_range(file_.get(), 0, 0, SYNC_FILE_RANGE_WAIT_BEFORE) != 0) {
    failWithErrno("cannot write the file to disk");
  }
#endif
}

void CPartialFile::close() {
  file_ = CUniqueFd();
  place_.close();
}

void CPartialFile::reserve(std::uint64_t size) {
  if (size == DownloadResume::kUnknown || size < kReserveFrom) {
    return;
  }
  try {
    reserveRoom(file_.get(), size);
  } catch (const std::system_error& error) {
    if (plan_.size != 0) {
      throw;
    }
    throw CNoRoomForClaim(error.code(), "cannot make room for the " + std::to_string(size) +
                                            " bytes that the server announces");
  }
}

}  // namespace zt_transfers
