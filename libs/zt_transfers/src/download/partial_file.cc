#include "download/partial_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "download/counted_name.h"
#include "download/file_trouble.h"
#include "download/publish.h"
#include "download/reserve_room.h"
#include "download/target_folder.h"

namespace zt_transfers {
namespace {

constexpr mode_t kAllThatTheUmaskLeaves = 0666;
constexpr int kOpenPartial = O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
constexpr int kMostNames = 16;
constexpr unsigned kMostCounted = 10'000;
constexpr std::uint64_t kReserveFrom = 1024 * 1024;  // smaller files are written at once

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct stat statusOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) {
    fail("cannot read the partial file's status");
  }
  return status;
}

// A partial file belongs to one attempt at a time. The one before may still be ending.
bool lock(int file) {
  constexpr std::chrono::seconds kLimit{10};
  constexpr std::chrono::milliseconds kPause{5};
  const auto until = std::chrono::steady_clock::now() + kLimit;
  while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) {
      return true;  // a file system without locks
    }
    if (std::chrono::steady_clock::now() > until) {
      return false;
    }
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

void syncData(int file) {
#if defined(__APPLE__)
  const int failed = ::fsync(file);
#else
  const int failed = ::fdatasync(file);
#endif
  if (failed != 0) {
    fail("cannot write the file to disk");
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

std::string parentOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

}  // namespace

void CPartialFile::remove(const std::string& groupFolder, const DownloadResume& resume) {
  const TargetPath path = parseTargetPath(resume.partialPath);
  const CUniqueFd folder =
      openTargetFolder(groupFolder, path.folders, MissingFolders::kFail).folder;
  struct stat status {};
  const bool isIt = ::fstatat(folder.get(), path.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                    status.st_ino == resume.inode;
  if (isIt && ::unlinkat(folder.get(), path.name.c_str(), 0) != 0) {
    fail("cannot remove it");
  }
}

CPartialFile::~CPartialFile() {
  // Nothing worth keeping is in an empty one.
  if (discarded_ || resume_.written.empty()) {
    unlink();
  }
}

void CPartialFile::discardNow() {
  discarded_ = true;
  unlink();
}

void CPartialFile::unlink() {
  if (file_.valid() && !name_.empty() && isThere(name_, resume_.inode)) {
    ::unlinkat(folder_.get(), name_.c_str(), 0);
  }
}

CPartialFile::Found CPartialFile::reopen(const DownloadResume& resume) {
  if (parentOf(resume.partialPath) != partialPath("")) {
    return Found::kNothing;
  }
  resume_ = resume;
  if (!openFolder(MissingFolders::kFail)) {
    resume_ = {};
    return Found::kNothing;
  }
  std::string name = resume.partialPath.substr(partialPath("").size());
  CUniqueFd file(::openat(folder_.get(), name.c_str(), kOpenPartial));
  if (!file.valid() && landedAlready(resume)) {
    syncFolder();
    return Found::kLanded;
  }
  resume_ = {};
  if (!file.valid()) {
    return Found::kNothing;
  }
  const struct stat status = statusOf(file.get());
  // The attempt before may have removed it before it gave it free.
  if (!S_ISREG(status.st_mode) || status.st_ino != resume.inode || !lock(file.get()) ||
      !isThere(name, status.st_ino)) {
    return Found::kNothing;
  }
  adopt(std::move(file), std::move(name));
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
  openFolder(MissingFolders::kMake);
  for (int number = 0; number < kMostNames; ++number) {
    const std::string key = plan_.key + '\0' + std::to_string(number);
    std::string name = partialName(plan_.target.name, key);
    CUniqueFd file(::openat(folder_.get(), name.c_str(), kOpenPartial | O_CREAT | O_EXCL,
                            kAllThatTheUmaskLeaves));
    if (file.valid()) {
      ::flock(file.get(), LOCK_EX | LOCK_NB);
      adopt(std::move(file), std::move(name));
      reserve(size);
      return;
    }
    if (errno != EEXIST) {
      fail("cannot make the file in its folder");
    }
    if (takeExisting(name)) {
      reserve(size);
      return;
    }
  }
  errno = EEXIST;
  fail("cannot make the file in its folder");
}

// What an earlier run of the program has left under this file's own hidden name; nobody knows
// how good its content is.
bool CPartialFile::takeExisting(const std::string& name) {
  CUniqueFd file(::openat(folder_.get(), name.c_str(), kOpenPartial));
  if (!file.valid()) {
    return false;
  }
  const struct stat status = statusOf(file.get());
  const bool plain =
      S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == ::geteuid();
  if (!plain || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 || !isThere(name, status.st_ino) ||
      ::ftruncate(file.get(), 0) != 0) {
    return false;
  }
  adopt(std::move(file), name);
  return true;
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
      fail("cannot empty the partial file");
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
      fail("cannot write to the file");
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

void CPartialFile::settle(bool alone) {
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
  if (alone && foldersMade_) {
    syncFileSystem();
  } else if (alone && ::fsync(file_.get()) != 0) {
    fail("cannot write the file to disk");
  }
}

bool CPartialFile::syncFileSystem() const {
#if defined(__linux__)
  if (::syncfs(file_.get()) != 0) {
    fail("cannot write the file to disk");
  }
  return true;
#else
  if (::fsync(file_.get()) != 0) {
    fail("cannot write the file to disk");
  }
  return false;
#endif
}

std::string CPartialFile::publish() {
  if (!isThere(name_, resume_.inode)) {
    errno = ENOENT;
    fail("the partial file was replaced");
  }
  std::string name = zt_transfers::publish(folder_.get(), name_, plan_.target.name);
  name_.clear();
  return name;
}

void CPartialFile::syncFolder() const {
  // Some file systems do not offer it; then the file's own sync has to do.
  if (::fsync(folder_.get()) != 0 && errno != EINVAL && errno != EROFS) {
    fail("cannot write the folder to disk");
  }
}

void CPartialFile::close() {
  file_ = CUniqueFd();
  folder_ = CUniqueFd();
}

bool CPartialFile::sameFolder(const CPartialFile& other) const {
  return folderStatus_.st_dev == other.folderStatus_.st_dev &&
         folderStatus_.st_ino == other.folderStatus_.st_ino;
}

bool CPartialFile::sameFileSystem(const CPartialFile& other) const {
  return folderStatus_.st_dev == other.folderStatus_.st_dev;
}

std::string CPartialFile::partialPath(const std::string& name) const {
  std::string path;
  for (const std::string& folder : plan_.target.folders) {
    path += folder + '/';
  }
  return path + name;
}

// False when it is not there.
bool CPartialFile::openFolder(MissingFolders missing) {
  if (folder_.valid()) {
    return true;
  }
  try {
    TargetFolder target = openTargetFolder(plan_.folder, plan_.target.folders, missing);
    folder_ = std::move(target.folder);
    foldersMade_ = target.made;
  } catch (const std::system_error& error) {
    const bool gone = dynamic_cast<const CFolderGone*>(&error) != nullptr;
    if (missing == MissingFolders::kFail && !gone && error.code().value() == ENOENT) {
      return false;
    }
    throw;
  }
  if (::fstat(folder_.get(), &folderStatus_) != 0) {
    fail("cannot read the folder's status");
  }
  return true;
}

void CPartialFile::adopt(CUniqueFd file, std::string name) {
  file_ = std::move(file);
  name_ = std::move(name);
  resume_.partialPath = partialPath(name_);
  resume_.inode = statusOf(file_.get()).st_ino;
}

// A program that ended between the renaming and the note of it left its file under its final
// name.
bool CPartialFile::landedAlready(const DownloadResume& resume) const {
  const auto isWhole = [&](std::uint64_t size) {
    return resume.size == DownloadResume::kUnknown ? size >= lengthOf(resume.written)
                                                   : size == resume.size;
  };
  for (unsigned count = 0; count <= kMostCounted; ++count) {
    struct stat status {};
    const std::string name = countedName(plan_.target.name, count);
    if (::fstatat(folder_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      return false;
    }
    if (status.st_ino == resume.inode && S_ISREG(status.st_mode)) {
      return isWhole(static_cast<std::uint64_t>(status.st_size));
    }
  }
  return false;
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

bool CPartialFile::isThere(const std::string& name, std::uint64_t inode) const {
  struct stat status {};
  return ::fstatat(folder_.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         status.st_ino == inode && S_ISREG(status.st_mode);
}

}  // namespace zt_transfers
