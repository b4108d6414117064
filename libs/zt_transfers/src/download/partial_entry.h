#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/file_ops.h"
#include "base/unique_fd.h"
#include "download/target_folder.h"
#include "download/target_path.h"
#include "engine/download_resume.h"

namespace zt_transfers {

// The partial file is locked.
class CPartialFileInUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A partial file's directory entry: its folder, which stays open, and its hidden name there until
// it gets the final one. Another file that has taken the name meanwhile is not touched.
//
// Thread: one at a time; calls block, and throw std::system_error.
class CPartialEntry {
 public:
  // `key` identifies this file among those of all queues. `ops` must outlive the entry.
  CPartialEntry(IFileOps& ops, std::string groupFolder, TargetPath target, std::string key)
      : ops_(ops),
        groupFolder_(std::move(groupFolder)),
        target_(std::move(target)),
        key_(std::move(key)) {}

  // Removes an earlier attempt's partial file if it exists. Throws CPartialFileInUse while an
  // attempt holds it.
  static void remove(IFileOps& ops, const std::string& groupFolder, const DownloadResume& resume);

  // False when the folder is missing and was not to be created.
  bool openFolder(MissingFolders missing);

  // The functions below need the folder. They return locked files.

  // The partial file of an earlier attempt; invalid when it does not exist any more, or is not as
  // it was left. Throws CPartialFileInUse when another process or manager has locked it.
  CUniqueFd reopen(const DownloadResume& resume);
  // Whether the folder's path still leads to it: the user can move it, or mount another disk there.
  bool isFolderInPlace() const;
  // Whether the partial file still has its name.
  bool isThere() const { return !name_.empty() && isThere(name_, inode_); }
  // A new partial file, or one of this name that an earlier run has left, emptied. It gets another
  // name than `lost`, the path of one that could not be reopened: that one may come back with its
  // disk.
  CUniqueFd make(const std::string& lost);
  // The file under its final name, if the program may have ended after the rename and before it
  // recorded that; else invalid. The name was free when it was recorded, and a file of somebody
  // else can have got it since: the content tells.
  CUniqueFd openFinalized(const DownloadResume& resume) const;
  // A name that no file has now, for publish().
  std::string chooseName();
  // Gives the file that name. False when another file has it meanwhile.
  bool publish();
  // Best effort.
  void unlink() noexcept;
  // Makes the folder's names durable where the file system can.
  void syncFolder() const;

  // The partial file's path below the group's folder.
  std::string path() const { return pathOf(name_); }
  std::uint32_t owner() const { return owner_; }
  // Changes with a remount on some file systems; 0: never opened.
  std::uint64_t inode() const { return inode_; }
  bool sameFolder(const CPartialEntry& other) const;
  // Whether both files would like to have the same name.
  bool sameTarget(const CPartialEntry& other) const {
    return target_.name == other.target_.name && sameFolder(other);
  }
  bool sameFileSystem(const CPartialEntry& other) const;
  // Whether a partial file of this path lies in this folder.
  bool contains(const std::string& path) const;

  void close() { folder_ = CUniqueFd(); }

 private:
  std::string pathOf(const std::string& name) const;
  CUniqueFd open(MissingFolders missing) const;
  CUniqueFd open(const std::string& name) const;
  CUniqueFd takeExisting(const std::string& name);
  void take(const std::string& name, const struct stat& status);
  std::string nameOf(const DownloadResume& resume) const;
  bool hasLeft(const DownloadResume& resume, const struct stat& finalized) const;
  bool isThere(const std::string& name, std::uint64_t inode) const;

  IFileOps& ops_;
  const std::string groupFolder_;
  const TargetPath target_;
  const std::string key_;

  CUniqueFd folder_;
  struct stat folderStatus_ {};
  std::string name_;  // of the partial file; empty: none exists, or it is published
  // Of the partial file since it was opened: it tells whether the name still leads to it.
  std::uint64_t inode_ = 0;
  std::uint32_t owner_ = DownloadResume::kNobody;
  unsigned count_ = 0;  // the number of the chosen final name
};

}  // namespace zt_transfers
