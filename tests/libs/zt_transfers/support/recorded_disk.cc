#include "recorded_disk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/file_status.h"

namespace zt_transfers::test {
namespace {

using Kind = DiskChange::Kind;

ino_t inodeIn(int folder, const char* name) {
  struct stat status {};
  return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_ino : 0;
}

}  // namespace

std::string describe(const DiskChange& change) {
  static const char* const kNames[] = {"create", "make folder", "write", "truncate", "move",
                                       "link",   "unlink",      "sync",  "sync all", "note"};
  return std::string(kNames[static_cast<int>(change.kind)]) + " " + change.name + " " + change.to +
         " (inode " + std::to_string(change.node) + ", " + std::to_string(change.data.size()) +
         " bytes at " + std::to_string(change.offset) + ")";
}

bool CRecordingFileOps::record(bool succeeded, DiskChange change) {
  if (succeeded) {
    changes_.push_back(std::move(change));
  }
  return succeeded;
}

void CRecordingFileOps::note(std::size_t note) {
  const std::lock_guard lock(mutex_);
  record(true, {.kind = Kind::kNote, .note = note});
}

std::vector<DiskChange> CRecordingFileOps::changes() const {
  const std::lock_guard lock(mutex_);
  return changes_;
}

CUniqueFd CRecordingFileOps::create(int folder, const char* name) {
  const std::lock_guard lock(mutex_);
  CUniqueFd file = CPosixFileOps::create(folder, name);
  if (file.valid()) {
    record(true, {.kind = Kind::kCreate,
                  .node = statusOf(file.get()).st_ino,
                  .folder = statusOf(folder).st_ino,
                  .name = name});
  }
  return file;
}

ssize_t CRecordingFileOps::write(int file, const char* data, std::size_t size,
                                 std::uint64_t offset) {
  const std::lock_guard lock(mutex_);
  const ssize_t written = CPosixFileOps::write(file, data, size, offset);
  if (written > 0) {
    record(true, {.kind = Kind::kWrite,
                  .node = statusOf(file).st_ino,
                  .offset = offset,
                  .data = std::string(data, static_cast<std::size_t>(written))});
  }
  return written;
}

bool CRecordingFileOps::truncate(int file) {
  const std::lock_guard lock(mutex_);
  return record(CPosixFileOps::truncate(file),
                {.kind = Kind::kTruncate, .node = statusOf(file).st_ino});
}

bool CRecordingFileOps::makeFolder(int parent, const char* name) {
  const std::lock_guard lock(mutex_);
  const bool made = CPosixFileOps::makeFolder(parent, name);
  return made && record(true, {.kind = Kind::kMakeFolder,
                               .node = inodeIn(parent, name),
                               .folder = statusOf(parent).st_ino,
                               .name = name});
}

bool CRecordingFileOps::renameWithoutReplacing(int folder, const char* from, const char* to) {
  const std::lock_guard lock(mutex_);
  if (links_) {
    errno = ENOTSUP;
    return false;
  }
  return record(CPosixFileOps::renameWithoutReplacing(folder, from, to),
                {.kind = Kind::kMove, .folder = statusOf(folder).st_ino, .name = from, .to = to});
}

bool CRecordingFileOps::rename(int folder, const char* from, const char* to) {
  const std::lock_guard lock(mutex_);
  return record(CPosixFileOps::rename(folder, from, to),
                {.kind = Kind::kMove, .folder = statusOf(folder).st_ino, .name = from, .to = to});
}

bool CRecordingFileOps::link(int folder, const char* from, const char* to) {
  const std::lock_guard lock(mutex_);
  return record(CPosixFileOps::link(folder, from, to),
                {.kind = Kind::kLink, .folder = statusOf(folder).st_ino, .name = from, .to = to});
}

bool CRecordingFileOps::unlink(int folder, const char* name) {
  const std::lock_guard lock(mutex_);
  return record(CPosixFileOps::unlink(folder, name),
                {.kind = Kind::kUnlink, .folder = statusOf(folder).st_ino, .name = name});
}

bool CRecordingFileOps::sync(int file) {
  const std::lock_guard lock(mutex_);
  return record(true, {.kind = Kind::kSync, .node = statusOf(file).st_ino});
}

bool CRecordingFileOps::syncFileSystem(int /*file*/) {
  const std::lock_guard lock(mutex_);
  return record(true, {.kind = Kind::kSyncAll});
}

CDiskModel::CDiskModel(ino_t root, Survives names, Survives contents)
    : survivingNames_(names), survivingContents_(contents) {
  add(root, true);
}

std::size_t CDiskModel::add(ino_t inode, bool isFolder) {
  nodes_.push_back({.inode = inode, .isFolder = isFolder});
  return current_[inode] = nodes_.size() - 1;
}

void CDiskModel::apply(const DiskChange& change) {
  switch (change.kind) {
    case Kind::kCreate:
    case Kind::kMakeFolder: {
      const std::size_t node = add(change.node, change.kind == Kind::kMakeFolder);
      nodeOf(change.folder).names[change.name] = node;
      break;
    }
    case Kind::kWrite: {
      std::string& content = nodeOf(change.node).content;
      content.resize(std::max(content.size(), change.offset + change.data.size()));
      content.replace(change.offset, change.data.size(), change.data);
      break;
    }
    case Kind::kTruncate:
      nodeOf(change.node).content.clear();
      break;
    case Kind::kMove: {
      Names& names = nodeOf(change.folder).names;
      names[change.to] = names.at(change.name);
      names.erase(change.name);
      break;
    }
    case Kind::kLink: {
      Names& names = nodeOf(change.folder).names;
      names[change.to] = names.at(change.name);
      break;
    }
    case Kind::kUnlink:
      nodeOf(change.folder).names.erase(change.name);
      break;
    case Kind::kSync:
      sync(nodeOf(change.node));
      break;
    case Kind::kSyncAll:
      for (Node& node : nodes_) {
        sync(node);
      }
      break;
    case Kind::kNote:
      break;
  }
}

void CDiskModel::sync(Node& node) {
  node.syncedContent = node.content;
  node.syncedNames = node.names;
}

std::map<std::string, CDiskModel::File> CDiskModel::files() const {
  std::map<std::string, File> files;
  collect(nodes_.front(), "", files);
  return files;
}

void CDiskModel::collect(const Node& folder, const std::string& prefix,
                         std::map<std::string, File>& files) const {
  const bool allNames = survivingNames_ == Survives::kAll;
  for (const auto& [name, index] : allNames ? folder.names : folder.syncedNames) {
    const Node& node = nodes_[index];
    if (node.isFolder) {
      collect(node, prefix + name + "/", files);
    } else {
      const bool allContent = survivingContents_ == Survives::kAll;
      files[prefix + name] = {node.inode, allContent ? &node.content : &node.syncedContent};
    }
  }
}

}  // namespace zt_transfers::test
