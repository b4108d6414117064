#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "base/file_ops.h"

namespace zt_transfers::test {

// One change to the file system, or something that the test noted between two of them.
struct DiskChange {
  enum class Kind {
    kCreate,
    kMakeFolder,
    kWrite,
    kTruncate,
    kMove,  // `name` becomes `to`
    kLink,
    kUnlink,
    kSync,  // a file's content, or a folder's names
    kSyncAll,
    kNote,
  };

  Kind kind = Kind::kNote;
  ino_t node = 0;  // the file or, for a sync, also a folder
  ino_t folder = 0;
  std::string name{};
  std::string to{};
  std::uint64_t offset = 0;
  std::string data{};
  std::size_t note = 0;  // the test's own number
};

std::string describe(const DiskChange& change);

// Carries out changes and records them in their order; a sync is only recorded. Thread: any.
class CRecordingFileOps final : public CPosixFileOps {
 public:
  // `links`: the file system cannot rename without replacing.
  explicit CRecordingFileOps(bool links) : links_(links) {}

  void note(std::size_t note);
  std::vector<DiskChange> changes() const;

  CUniqueFd create(int folder, const char* name) override;
  ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) override;
  bool truncate(int file) override;
  bool makeFolder(int parent, const char* name) override;
  bool renameWithoutReplacing(int folder, const char* from, const char* to) override;
  bool rename(int folder, const char* from, const char* to) override;
  bool link(int folder, const char* from, const char* to) override;
  bool unlink(int folder, const char* name) override;
  bool syncContent(int file) override { return sync(file); }
  bool sync(int file) override;
  bool hasFileSystemSync(int /*file*/) override { return true; }
  bool syncFileSystem(int file) override;
  bool contentWritten(int /*file*/) override { return true; }

 private:
  bool record(bool succeeded, DiskChange change);

  const bool links_;
  mutable std::recursive_mutex mutex_;  // also held during a change, so that the order is exact
  std::vector<DiskChange> changes_;     // guarded by mutex_
};

// What a disk holds after recorded changes and a power cut: everything that was synced and, as it
// may happen, also names or contents that were not.
class CDiskModel {
 public:
  enum class Survives { kSynced, kAll };
  struct File {
    ino_t inode = 0;
    const std::string* content = nullptr;
  };

  CDiskModel(ino_t root, Survives names, Survives contents);

  void apply(const DiskChange& change);
  // By the path below the root.
  std::map<std::string, File> files() const;

 private:
  using Names = std::map<std::string, std::size_t>;  // to nodes
  struct Node {
    ino_t inode = 0;
    bool isFolder = false;
    std::string content{};
    std::string syncedContent{};
    Names names{};
    Names syncedNames{};
  };

  Node& nodeOf(ino_t inode) { return nodes_.at(current_.at(inode)); }
  std::size_t add(ino_t inode, bool isFolder);
  static void sync(Node& node);
  void collect(const Node& folder, const std::string& prefix,
               std::map<std::string, File>& files) const;

  const Survives survivingNames_;
  const Survives survivingContents_;
  std::vector<Node> nodes_;               // the first one is the root
  std::map<ino_t, std::size_t> current_;  // an inode's number is used again after its file
};

}  // namespace zt_transfers::test
