#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "base/unique_fd.h"
#include "download/target_folder.h"
#include "download/target_path.h"
#include "engine/download_resume.h"

namespace zt_transfers {

// An attempt is at it.
class CPartialFileInUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where a partial file lies: its folder, which stays open, and its hidden name there until it gets
// the final one. A file that has taken the name meanwhile is not touched.
//
// Thread: one at a time; calls block, and throw std::system_error.
class CPartialPlace {
 public:
  // `key` names this file of this group, and no other.
  CPartialPlace(std::string groupFolder, TargetPath target, std::string key)
      : groupFolder_(std::move(groupFolder)), target_(std::move(target)), key_(std::move(key)) {}

  // Removes what is left of an earlier attempt, if it is there. CPartialFileInUse: not now.
  static void remove(const std::string& groupFolder, const DownloadResume& resume);

  // False when it is not there, and was not to be made.
  bool openFolder(MissingFolders missing);

  // All of these need the folder. A file that they give is locked.
  //
  // The file of an attempt before; invalid: there is none any more.
  CUniqueFd reopen(const DownloadResume& resume);
  // A new one, or one of this name that an earlier run has left, emptied.
  CUniqueFd make();
  // A program that ended between the renaming and the note of it left its file under its final
  // name.
  bool isFinalized(const DownloadResume& resume) const;
  // Gives the file its final name, and gives that.
  std::string publish();
  void unlink();
  // Makes its names durable, where the file system offers that.
  void syncFolder() const;

  // Of the partial file, below the group's folder.
  std::string path() const { return pathOf(name_); }
  std::uint64_t inode() const { return inode_; }
  bool sameFolder(const CPartialPlace& other) const;
  bool sameFileSystem(const CPartialPlace& other) const;
  // Of this path, it would lie in this folder.
  bool contains(const std::string& path) const;

  void close() { folder_ = CUniqueFd(); }

 private:
  std::string pathOf(const std::string& name) const;
  CUniqueFd open(const std::string& name) const;
  CUniqueFd takeExisting(const std::string& name);
  void take(const std::string& name, std::uint64_t inode);
  bool isThere(const std::string& name, std::uint64_t inode) const;

  const std::string groupFolder_;
  const TargetPath target_;
  const std::string key_;

  CUniqueFd folder_;
  struct stat folderStatus_ {};
  std::string name_;  // of the partial file; empty: there is none, or it is published
  std::uint64_t inode_ = 0;
};

}  // namespace zt_transfers
