#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/file_ops.h"

namespace zt_transfers::test {

// What is wrong with the disk.
enum class DiskTrouble {
  kNone,
  kFull,
  kWritesFail,
  kSyncsFail,  // and the system forgets the bytes that it could not write
  kSlow,
};
constexpr int kDiskTroubles = 5;
const char* textOf(DiskTrouble trouble);

// Changes real files below a folder, and knows what a power cut would leave of them. Thread: one.
class CVirtualDisk final : public CPosixFileOps {
 public:
  // The folder must exist; all that is in it is durable.
  explicit CVirtualDisk(std::string root);

  void setTrouble(DiskTrouble trouble) { trouble_ = trouble; }
  DiskTrouble trouble() const { return trouble_; }
  // From here on nothing changes any more: the process is dead, and destructors still run.
  void setDead(bool dead) { dead_ = dead; }
  // As the system does now and then: writes everything, and remembers what it lost by that.
  void writeBack();
  // The folder then holds what was durable. No file may be open.
  void cutPower();
  // Gives every file another inode number, as some file systems do when they are mounted again, and
  // as a backup does that is restored. No file may be open.
  void renumber();

  // What a file holds after a power cut; by its path below the root.
  std::map<std::string, std::string> durableFiles() const;

  CUniqueFd create(int folder, const char* name) override;
  ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) override;
  bool truncate(int file) override;
  bool reserve(int file, std::uint64_t size) override;
  bool makeFolder(int parent, const char* name) override;
  bool renameWithoutReplacing(int folder, const char* from, const char* to) override;
  bool rename(int folder, const char* from, const char* to) override;
  bool link(int folder, const char* from, const char* to) override;
  bool unlink(int folder, const char* name) override;
  bool syncContent(int file) override { return sync(file); }
  bool sync(int file) override;
  bool syncFileSystem(int file) override;
  bool contentWritten(int file) override;
  void startWriting(int /*file*/, std::uint64_t /*begin*/, std::uint64_t /*end*/) override {}

 private:
  using Names = std::map<std::string, std::size_t>;  // to nodes
  struct Node {
    bool isFolder = false;
    std::string durable{};
    std::vector<std::pair<std::uint64_t, std::string>> dirty{};  // writes that are not durable
    std::uint64_t size = 0;
    bool lost = false;  // a write back has failed, and no sync has told it yet
    Names names{};
    Names durableNames{};
  };

  bool fails(int code);
  Node& nodeOf(int file);
  Node& nodeIn(int folder, const char* name);
  std::size_t add(ino_t inode, bool isFolder);
  void scan(const std::string& folder, std::size_t node);
  bool writeBack(Node& node);
  void move(int folder, const char* from, const char* to, bool keeps);
  void collect(std::size_t node, const std::string& prefix,
               std::map<std::string, std::string>& files) const;
  using Kept = std::map<std::size_t, std::string>;  // nodes to the paths of their files
  void build(std::size_t node, const std::string& path, Kept& kept) const;

  const std::string root_;
  DiskTrouble trouble_ = DiskTrouble::kNone;
  bool dead_ = false;
  std::vector<Node> nodes_;  // the first one is the root
  std::map<ino_t, std::size_t> current_;
};

}  // namespace zt_transfers::test
