#include "download/partial_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "base/ascii.h"
#include "base/system_failure.h"
#include "base/url_parts.h"
#include "download/disk_verdict.h"
#include "download/received_name.h"
#include "download/target_folder.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kReserveFrom = 1024 * 1024;  // smaller files are written at once

// Writing starts in windows of this size once they are complete, so that a sync has little left.
constexpr std::uint64_t kWriteWindow = 8ULL * 1024 * 1024;

}  // namespace

CPartialFile::Plan CPartialFile::planFor(const StartOrder& order) {
  Plan plan;
  plan.folder = order.folder;
  plan.target = receivedTarget(parseTargetPath(order.spec.location));
  plan.origin = loggableUrl(order.spec.url);
  plan.key = order.salt + std::to_string(order.file.groupId) + '\0' + order.spec.fileId;
  plan.size = order.spec.size;
  plan.modified = order.spec.modified;
  plan.md5 = loweredAscii(order.spec.contentMd5);
  return plan;
}

CPartialFile::~CPartialFile() {
  // An empty file is not worth keeping.
  if (discarded_ || resume_.written.empty()) {
    entry_.unlink();
  }
}

void CPartialFile::discardNow() {
  discarded_ = true;
  entry_.unlink();
}

bool CPartialFile::renew(const StartOrder& order) {
  Plan plan = planFor(order);
  const bool same = plan.folder == plan_.folder && plan.target == plan_.target &&
                    order.resume.begun() &&
                    order.resume.download().partialPath == resume().partialPath;
  if (same) {
    plan_ = std::move(plan);
  }
  return same;
}

void CPartialFile::park(Unsynced unsynced) {
  try {
    if (unsynced == Unsynced::kSync) {
      checkpoint();
    }
  } catch (const std::system_error&) {
    // The resume data tells.
  }
  close();
}

// The disk was taken away meanwhile, or this is a copy.
void CPartialFile::keepOnlyDurable() {
  hash_.reset();
  digest_.reset();
  const CMutexLock lock(mutex_);
  resume_.written = resume_.durable;
}

void CPartialFile::forget() {
  close();
  hash_.reset();
  digest_.reset();
  const CMutexLock lock(mutex_);
  // The name stays known: the file may come back with its disk, and no other one may have that name
  // by then.
  DownloadResume lost;
  lost.partialPath = std::move(resume_.partialPath);
  lost.owner = resume_.owner;
  resume_ = std::move(lost);
  lost_ = false;
}

CPartialFile::Found CPartialFile::reopen(const DownloadResume& noted) {
  const DownloadResume own = resume();
  const DownloadResume& known = own.begun() ? own : noted;
  {
    const CMutexLock lock(mutex_);
    if (std::exchange(lost_, false)) {
      hash_.reset();
      digest_.reset();
    }
  }
  if (file_.valid() && entry_.isFolderInPlace()) {
    if (entry_.isThere()) {
      return Found::kPartial;
    }
    forget();
    return Found::kNothing;
  }
  close();
  if (!entry_.contains(known.partialPath)) {
    return Found::kNothing;
  }
  setResume(known);
  if (!entry_.openFolder(MissingFolders::kFail)) {
    forget();
    return Found::kNothing;
  }
  const std::uint64_t inode = entry_.inode();
  CUniqueFd file = entry_.reopen(known);
  if (!file.valid()) {
    if (isFinalized(known)) {
      entry_.syncFolder();
      return Found::kFinalized;
    }
    forget();
    return Found::kNothing;
  }
  file_ = std::move(file);
  if (inode != 0 && inode != entry_.inode()) {
    keepOnlyDurable();
  }
  return Found::kPartial;
}

bool CPartialFile::isFinalized(const DownloadResume& known) const {
  const CUniqueFd file = entry_.openFinalized(known);
  if (!file.valid() || !hashes()) {
    return file.valid();
  }
  CContentHash hash;
  hash.readBack(ops_, file.get(), known.size);
  return hash.finish() == plan_.md5;
}

void CPartialFile::create(std::uint64_t size) {
  if (file_.valid()) {
    return;
  }
  entry_.openFolder(MissingFolders::kMake);
  adopt(entry_.make(resume().partialPath));
  reserve(size);
}

void CPartialFile::adopt(CUniqueFd file) {
  file_ = std::move(file);
  const CMutexLock lock(mutex_);
  resume_.partialPath = entry_.path();
  resume_.owner = entry_.owner();
}

void CPartialFile::restart(const std::string& validator, std::uint64_t size) {
  {
    const CMutexLock lock(mutex_);
    resume_.validator = validator;
    resume_.size = size;
    resume_.written.clear();
    resume_.durable.clear();
    resume_.finalName.clear();
  }
  hash_.reset();
  digest_.reset();
  if (file_.valid()) {
    if (!ops_.truncate(file_.get())) {
      failWithErrno("cannot empty the partial file");
    }
    reserve(size);
  }
}

void CPartialFile::write(std::uint64_t offset, const char* data, std::size_t size) {
  if (!file_.valid()) {
    create(resume().size);
  }
  std::size_t done = 0;
  while (done < size) {
    const ssize_t written = ops_.write(file_.get(), data + done, size - done, offset + done);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      noteWritten({offset, offset + done});
      failWithErrno("cannot write to the file");
    }
    done += static_cast<std::size_t>(written);
  }
  noteWritten({offset, offset + size});
  const std::uint64_t from = offset / kWriteWindow * kWriteWindow;
  const std::uint64_t to = (offset + size) / kWriteWindow * kWriteWindow;
  if (from < to) {
    ops_.startWriting(file_.get(), from, to);
  }
}

void CPartialFile::noteWritten(ByteSpan span) {
  const CMutexLock lock(mutex_);
  // A write beside the sync that failed may have been lost with it.
  if (!lost_) {
    addSpan(resume_.written, span);
  }
}

void CPartialFile::failToSync() {
  const int error = errno;
  {
    const CMutexLock lock(mutex_);
    lost_ = true;
    resume_.written = resume_.durable;
  }
  errno = error;
  failWithErrno("cannot write the file to disk");
}

void CPartialFile::noteSynced() {
  const CMutexLock lock(mutex_);
  resume_.durable = resume_.written;
}

void CPartialFile::chooseName() {
  std::string name = entry_.chooseName();
  const CMutexLock lock(mutex_);
  resume_.finalName = std::move(name);
}

void CPartialFile::setResume(DownloadResume resume) {
  const CMutexLock lock(mutex_);
  resume_ = std::move(resume);
}

DownloadResume CPartialFile::resume() const {
  const CMutexLock lock(mutex_);
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
  // Bytes written during the sync may or may not be included.
  ByteSpans written = resume().written;
  if (!ops_.syncContent(file_.get())) {
    failToSync();
  }
  const CMutexLock lock(mutex_);
  resume_.durable = std::move(written);
}

std::optional<std::string> CPartialFile::verify(std::uint64_t size) {
  create(size);
  const auto there = static_cast<std::uint64_t>(statusOf(ops_, file_.get()).st_size);
  std::uint64_t written = 0;
  {
    const CMutexLock lock(mutex_);
    resume_.size = size;
    written = lengthOf(resume_.written);
  }
  if (there != size || written != size) {
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
  openHash();
  hashWritten(size);
  digest_ = hash_->finish();
  hash_.reset();
  return *digest_;
}

void CPartialFile::sync(bool alone) {
  // The file is kept even if its file system cannot store where it comes from.
  if (!plan_.origin.empty()) {
    ops_.setAttribute(file_.get(), "user.xdg.origin.url", plan_.origin);
  }
  if (plan_.modified != 0) {
    constexpr std::uint64_t kMilliseconds = 1000;
    constexpr long kNanoseconds = 1'000'000;
    timespec modified{};
    modified.tv_sec = static_cast<time_t>(plan_.modified / kMilliseconds);
    modified.tv_nsec = static_cast<long>(plan_.modified % kMilliseconds) * kNanoseconds;
    // The file is kept even if its file system cannot store such a time.
    ops_.setTimes(file_.get(), modified);
  }
  if (alone && CNewFolders::shared().latest(statusOf(ops_, file_.get()).st_dev) != 0) {
    syncFileSystem();
    checkWritten();
  } else if (alone && !ops_.sync(file_.get())) {
    failToSync();
  }
}

bool CPartialFile::syncFileSystem() {
  if (!ops_.hasFileSystemSync(file_.get())) {
    if (!ops_.sync(file_.get())) {
      failToSync();
    }
    return false;
  }
  CNewFolders& folders = CNewFolders::shared();
  const dev_t device = statusOf(ops_, file_.get()).st_dev;
  const std::uint64_t made = folders.latest(device);
  if (!ops_.syncFileSystem(file_.get())) {
    failToSync();
  }
  folders.noteSynced(device, made);
  return true;
}

void CPartialFile::checkWritten() {
  if (!ops_.contentWritten(file_.get())) {
    failToSync();
  }
}

void CPartialFile::close() {
  file_ = CUniqueFd();
  entry_.close();
}

void CPartialFile::reserve(std::uint64_t size) {
  if (size == DownloadResume::kUnknown || size < kReserveFrom) {
    return;
  }
  if (ops_.reserve(file_.get(), size)) {
    return;
  }
  if (plan_.size != 0) {
    failWithErrno("cannot make room for the file");
  }
  throw CNoRoomForClaim(
      errno, std::generic_category(),
      "cannot make room for the " + std::to_string(size) + " bytes that the server announces");
}

}  // namespace zt_transfers
