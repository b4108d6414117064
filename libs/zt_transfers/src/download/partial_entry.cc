#include "download/partial_entry.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "base/system_failure.h"
#include "download/publish.h"

namespace zt_transfers {
namespace {

constexpr int kMaxNames = 16;

// Some file systems have no locks.
void lock(IFileOps& ops, int file) {
  if (!ops.lock(file) && errno == EWOULDBLOCK) {
    throw CPartialFileInUse("another program uses the partial file");
  }
}

// As open() says it of a name under which there is no file, or something else.
bool isNoFile(int error) {
  return error == ENOENT || error == ELOOP || error == EISDIR || error == ENXIO;
}

// Whether this can be the partial file: nobody else has put a file of that name there.
bool isOurs(const struct stat& status, const DownloadResume& resume) {
  return S_ISREG(status.st_mode) && (status.st_uid == ::geteuid() || status.st_uid == resume.owner);
}

// Whether a file of this length can hold the bytes that it is said to hold.
bool fits(std::uint64_t length, const DownloadResume& resume) {
  return resume.written.empty() || (length >= resume.written.back().end && length <= resume.size);
}

void syncNames(IFileOps& ops, int folder) {
  // Some file systems cannot sync a folder; then the file's own sync must be enough.
  if (!ops.sync(folder) && errno != EINVAL && errno != EROFS) {
    failWithErrno("cannot write the folder to disk");
  }
}

}  // namespace

// An attempt that has taken over the file since holds its lock.
void CPartialEntry::remove(IFileOps& ops, const std::string& groupFolder,
                           const DownloadResume& resume) {
  const TargetPath path = parseTargetPath(resume.partialPath);
  const CUniqueFd folder = openTargetFolder(ops, groupFolder, path.folders, MissingFolders::kFail);
  const CUniqueFd file = ops.open(folder.get(), path.name.c_str());
  if (!file.valid() && !isNoFile(errno)) {
    failWithErrno("cannot open it");
  }
  if (file.valid()) {
    if (!isOurs(statusOf(ops, file.get()), resume)) {
      return;
    }
    lock(ops, file.get());
    if (!ops.unlink(folder.get(), path.name.c_str()) && errno != ENOENT) {
      failWithErrno("cannot remove it");
    }
  }
  // Else a power cut could bring the file back when nobody knows it any more. Its attempt may have
  // removed it, too.
  syncNames(ops, folder.get());
}

bool CPartialEntry::openFolder(MissingFolders missing) {
  if (!folder_.valid()) {
    folder_ = open(missing);
    folderStatus_ = folder_.valid() ? statusOf(ops_, folder_.get()) : folderStatus_;
  }
  return folder_.valid();
}

// Invalid when a folder below the group's is missing and was not to be created.
CUniqueFd CPartialEntry::open(MissingFolders missing) const {
  try {
    return openTargetFolder(ops_, groupFolder_, target_.folders, missing);
  } catch (const std::system_error& error) {
    const bool gone = dynamic_cast<const CFolderGone*>(&error) != nullptr;
    if (missing == MissingFolders::kFail && !gone && error.code().value() == ENOENT) {
      return {};
    }
    throw;
  }
}

bool CPartialEntry::isFolderInPlace() const {
  const CUniqueFd folder = open(MissingFolders::kFail);
  if (!folder.valid()) {
    return false;
  }
  const struct stat status = statusOf(ops_, folder.get());
  return status.st_dev == folderStatus_.st_dev && status.st_ino == folderStatus_.st_ino;
}

CUniqueFd CPartialEntry::reopen(const DownloadResume& resume) {
  const std::string name = nameOf(resume);
  CUniqueFd file = open(name);
  if (!file.valid()) {
    if (isNoFile(errno)) {
      return file;
    }
    failWithErrno("cannot open the partial file");
  }
  const struct stat status = statusOf(ops_, file.get());
  const auto length = static_cast<std::uint64_t>(status.st_size);
  // With a second name, the content may belong to somebody else as well.
  if (!isOurs(status, resume) || status.st_nlink > 1 || !fits(length, resume)) {
    return {};
  }
  lock(ops_, file.get());
  // Whoever had the lock before may have removed the file.
  if (!isThere(name, status.st_ino)) {
    return {};
  }
  take(name, status);
  return file;
}

CUniqueFd CPartialEntry::make(const std::string& lost) {
  for (int number = 0; number < kMaxNames; ++number) {
    const std::string name =
        partialName(target_.name, key_ + '\0' + lost + '\0' + std::to_string(number));
    CUniqueFd file = ops_.create(folder_.get(), name.c_str());
    if (file.valid()) {
      ops_.lock(file.get());
      take(name, statusOf(ops_, file.get()));
      return file;
    }
    if (errno != EEXIST) {
      failWithErrno("cannot make the file in its folder");
    }
    file = takeExisting(name);
    if (file.valid()) {
      return file;
    }
  }
  errno = EEXIST;
  failWithErrno("cannot make the file in its folder");
}

// Its content cannot be trusted.
CUniqueFd CPartialEntry::takeExisting(const std::string& name) {
  CUniqueFd file = open(name);
  if (!file.valid()) {
    return file;
  }
  const struct stat status = statusOf(ops_, file.get());
  const bool plain =
      S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == ::geteuid();
  if (!plain || !ops_.lock(file.get()) || !isThere(name, status.st_ino) ||
      !ops_.truncate(file.get())) {
    return {};
  }
  take(name, status);
  return file;
}

CUniqueFd CPartialEntry::openFinalized(const DownloadResume& resume) const {
  // Before the rename all bytes were recorded as durable.
  if (resume.finalName.empty() || lengthOf(resume.durable) != resume.size) {
    return {};
  }
  CUniqueFd file = open(resume.finalName);
  if (!file.valid()) {
    if (isNoFile(errno)) {
      return file;
    }
    failWithErrno("cannot open the file under its final name");
  }
  const struct stat status = statusOf(ops_, file.get());
  const bool fitting =
      isOurs(status, resume) && static_cast<std::uint64_t>(status.st_size) == resume.size;
  return fitting && hasLeft(resume, status) ? std::move(file) : CUniqueFd();
}

// Whether nothing but that file is left under the partial file's name.
bool CPartialEntry::hasLeft(const DownloadResume& resume, const struct stat& finalized) const {
  const std::string name = nameOf(resume);
  struct stat partial {};
  if (!ops_.statusOfName(folder_.get(), name.c_str(), partial)) {
    return errno == ENOENT;
  }
  // Where a rename is a second link, the program can end before it removes the first one.
  return partial.st_ino == finalized.st_ino && partial.st_nlink > 1 &&
         ops_.unlink(folder_.get(), name.c_str());
}

std::string CPartialEntry::chooseName() {
  count_ = freeCount(ops_, folder_.get(), target_.name, count_);
  return countedName(target_.name, count_);
}

bool CPartialEntry::publish() {
  if (!isThere(name_, inode_)) {
    errno = ESTALE;
    failWithErrno("the partial file was replaced");
  }
  if (!renameIfFree(ops_, folder_.get(), name_, countedName(target_.name, count_))) {
    ++count_;
    return false;
  }
  name_.clear();
  return true;
}

void CPartialEntry::unlink() noexcept {
  struct stat status {};
  if (!name_.empty() && ops_.statusOfName(folder_.get(), name_.c_str(), status) &&
      status.st_ino == inode_) {
    ops_.unlink(folder_.get(), name_.c_str());
  }
}

void CPartialEntry::syncFolder() const {
  syncNames(ops_, folder_.get());
}

bool CPartialEntry::sameFolder(const CPartialEntry& other) const {
  return folderStatus_.st_dev == other.folderStatus_.st_dev &&
         folderStatus_.st_ino == other.folderStatus_.st_ino;
}

bool CPartialEntry::sameFileSystem(const CPartialEntry& other) const {
  return folderStatus_.st_dev == other.folderStatus_.st_dev;
}

bool CPartialEntry::contains(const std::string& path) const {
  const std::string folder = pathOf("");
  return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
         path.find('/', folder.size()) == std::string::npos;
}

std::string CPartialEntry::pathOf(const std::string& name) const {
  std::string path;
  for (const std::string& folder : target_.folders) {
    path += folder + '/';
  }
  return path + name;
}

CUniqueFd CPartialEntry::open(const std::string& name) const {
  return ops_.open(folder_.get(), name.c_str());
}

void CPartialEntry::take(const std::string& name, const struct stat& status) {
  name_ = name;
  inode_ = status.st_ino;
  owner_ = status.st_uid;
  count_ = 0;
}

std::string CPartialEntry::nameOf(const DownloadResume& resume) const {
  return resume.partialPath.substr(pathOf("").size());
}

bool CPartialEntry::isThere(const std::string& name, std::uint64_t inode) const {
  struct stat status {};
  if (!ops_.statusOfName(folder_.get(), name.c_str(), status)) {
    if (errno == ENOENT) {
      return false;
    }
    failWithErrno("cannot read the partial file's status");
  }
  return status.st_ino == inode && S_ISREG(status.st_mode);
}

}  // namespace zt_transfers
