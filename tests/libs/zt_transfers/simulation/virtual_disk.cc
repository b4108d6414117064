#include "simulation/virtual_disk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "base/file_status.h"

namespace zt_transfers::test {
namespace {

namespace fs = std::filesystem;

ino_t inodeOf(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

ino_t inodeIn(int folder, const char* name) {
  struct stat status {};
  return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_ino : 0;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

const char* textOf(DiskTrouble trouble) {
  static constexpr std::array<const char*, kDiskTroubles> kTexts{"well", "full", "refusing writes",
                                                                 "failing at syncs", "slow"};
  return kTexts[static_cast<std::size_t>(trouble)];
}

CVirtualDisk::CVirtualDisk(std::string root) : root_(std::move(root)) {
  scan(root_, add(inodeOf(root_), true));
}

std::size_t CVirtualDisk::add(ino_t inode, bool isFolder) {
  nodes_.push_back({.isFolder = isFolder});
  return current_[inode] = nodes_.size() - 1;
}

void CVirtualDisk::scan(const std::string& folder, std::size_t node) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::size_t child = add(inodeOf(entry.path()), entry.is_directory());
    if (entry.is_directory()) {
      scan(entry.path(), child);
    } else {
      nodes_[child].durable = contentOf(entry.path());
      nodes_[child].size = nodes_[child].durable.size();
    }
    nodes_[node].names[entry.path().filename()] = child;
  }
  nodes_[node].durableNames = nodes_[node].names;
}

CVirtualDisk::Node& CVirtualDisk::nodeOf(int file) {
  return nodes_[current_.at(statusOf(file).st_ino)];
}

CVirtualDisk::Node& CVirtualDisk::nodeIn(int folder, const char* name) {
  return nodes_[nodeOf(folder).names.at(name)];
}

bool CVirtualDisk::fails(int code) {
  errno = dead_ ? EIO : code;
  return errno != 0;
}

CUniqueFd CVirtualDisk::create(int folder, const char* name) {
  if (fails(trouble_ == DiskTrouble::kWritesFail ? EIO : 0)) {
    return {};
  }
  CUniqueFd file = CPosixFileOps::create(folder, name);
  if (file.valid()) {
    const std::size_t node = add(statusOf(file.get()).st_ino, false);
    nodeOf(folder).names[name] = node;
  }
  return file;
}

ssize_t CVirtualDisk::write(int file, const char* data, std::size_t size, std::uint64_t offset) {
  if (fails(trouble_ == DiskTrouble::kFull         ? ENOSPC
            : trouble_ == DiskTrouble::kWritesFail ? EIO
                                                   : 0)) {
    return -1;
  }
  const ssize_t written = CPosixFileOps::write(file, data, size, offset);
  if (written > 0) {
    Node& node = nodeOf(file);
    node.dirty.emplace_back(offset, std::string(data, static_cast<std::size_t>(written)));
    node.size = std::max(node.size, offset + static_cast<std::uint64_t>(written));
  }
  return written;
}

bool CVirtualDisk::truncate(int file) {
  if (fails(0) || !CPosixFileOps::truncate(file)) {
    return false;
  }
  Node& node = nodeOf(file);
  node.dirty.clear();
  node.durable.clear();
  node.size = 0;
  return true;
}

bool CVirtualDisk::reserve(int /*file*/, std::uint64_t /*size*/) {
  return !fails(trouble_ == DiskTrouble::kFull ? ENOSPC : 0);
}

bool CVirtualDisk::makeFolder(int parent, const char* name) {
  if (fails(0) || !CPosixFileOps::makeFolder(parent, name)) {
    return false;
  }
  const std::size_t node = add(inodeIn(parent, name), true);
  nodeOf(parent).names[name] = node;
  return true;
}

void CVirtualDisk::move(int folder, const char* from, const char* to, bool keeps) {
  Names& names = nodeOf(folder).names;
  names[to] = names.at(from);
  if (!keeps) {
    names.erase(from);
  }
}

bool CVirtualDisk::renameWithoutReplacing(int folder, const char* from, const char* to) {
  if (fails(0) || !CPosixFileOps::renameWithoutReplacing(folder, from, to)) {
    return false;
  }
  move(folder, from, to, false);
  return true;
}

bool CVirtualDisk::rename(int folder, const char* from, const char* to) {
  if (fails(0) || !CPosixFileOps::rename(folder, from, to)) {
    return false;
  }
  move(folder, from, to, false);
  return true;
}

bool CVirtualDisk::link(int folder, const char* from, const char* to) {
  if (fails(0) || !CPosixFileOps::link(folder, from, to)) {
    return false;
  }
  move(folder, from, to, true);
  return true;
}

bool CVirtualDisk::unlink(int folder, const char* name) {
  if (fails(0) || !CPosixFileOps::unlink(folder, name)) {
    return false;
  }
  nodeOf(folder).names.erase(name);
  return true;
}

// False when bytes were lost: they stay readable, but nothing writes them any more.
bool CVirtualDisk::writeBack(Node& node) {
  node.durableNames = node.names;
  if (trouble_ == DiskTrouble::kSyncsFail && !node.dirty.empty()) {
    node.dirty.clear();
    return false;
  }
  node.durable.resize(node.size);
  for (const auto& [offset, data] : node.dirty) {
    node.durable.replace(offset, data.size(), data);
  }
  node.dirty.clear();
  return true;
}

bool CVirtualDisk::sync(int file) {
  if (fails(0)) {
    return false;
  }
  Node& node = nodeOf(file);
  const bool lost = std::exchange(node.lost, false);
  if (!writeBack(node) || lost) {
    errno = EIO;
    return false;
  }
  return true;
}

// The system tells of lost bytes when the file itself is asked about, not here.
bool CVirtualDisk::syncFileSystem(int /*file*/) {
  if (fails(0)) {
    return false;
  }
  writeBack();
  return true;
}

void CVirtualDisk::writeBack() {
  for (Node& node : nodes_) {
    node.lost = !writeBack(node) || node.lost;
  }
}

bool CVirtualDisk::contentWritten(int file) {
  if (fails(0)) {
    return false;
  }
  const bool lost = std::exchange(nodeOf(file).lost, false);
  errno = lost ? EIO : 0;
  return !lost;
}

void CVirtualDisk::collect(std::size_t node, const std::string& prefix,
                           std::map<std::string, std::string>& files) const {
  for (const auto& [name, child] : nodes_[node].durableNames) {
    if (nodes_[child].isFolder) {
      collect(child, prefix + name + "/", files);
    } else {
      files[prefix + name] = nodes_[child].durable;
    }
  }
}

std::map<std::string, std::string> CVirtualDisk::durableFiles() const {
  std::map<std::string, std::string> files;
  collect(0, "", files);
  return files;
}

void CVirtualDisk::build(std::size_t node, const std::string& path, Kept& kept) const {
  for (const auto& [name, child] : nodes_[node].durableNames) {
    const std::string to = path + "/" + name;
    if (nodes_[child].isFolder) {
      fs::create_directory(to);
      build(child, to, kept);
    } else {
      if (const auto file = kept.extract(child)) {
        fs::rename(file.mapped(), to);
      }
      std::ofstream(to, std::ios::binary) << nodes_[child].durable;
    }
  }
}

// Files keep their inodes, as on a real disk.
void CVirtualDisk::cutPower() {
  const fs::path aside = root_ + ".aside";
  fs::create_directory(aside);
  Kept kept;
  for (const auto& entry : fs::recursive_directory_iterator(root_)) {
    if (entry.is_regular_file()) {
      const std::size_t node = current_.at(inodeOf(entry.path()));
      kept[node] = aside / std::to_string(node);
      fs::rename(entry.path(), kept[node]);
    }
  }
  for (const auto& entry : fs::directory_iterator(root_)) {
    fs::remove_all(entry.path());
  }
  build(0, root_, kept);
  fs::remove_all(aside);
  nodes_.clear();
  current_.clear();
  scan(root_, add(inodeOf(root_), true));
}

void CVirtualDisk::renumber() {
  const std::string copy = root_ + ".copy";
  for (const auto& entry : fs::recursive_directory_iterator(root_)) {
    if (entry.is_regular_file()) {
      const auto node = current_.extract(inodeOf(entry.path()));
      fs::copy_file(entry.path(), copy);
      fs::rename(copy, entry.path());
      current_[inodeOf(entry.path())] = node.mapped();
    }
  }
}

}  // namespace zt_transfers::test
