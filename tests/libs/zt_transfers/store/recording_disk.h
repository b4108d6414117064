#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace zt_transfers::test {

// A change of a file's content or of its folder.
struct DiskOperation {
  enum class Kind { kWrite, kTruncate, kSync, kDelete };

  Kind kind = Kind::kWrite;
  std::string file;     // its name, without folders
  std::int64_t at = 0;  // kWrite: the offset; kTruncate: the new size
  std::string bytes{};  // kWrite
};

// While it lives, records how SQLite changes databases, logs and journals. Thread: any.
class CRecordingDisk {
 public:
  CRecordingDisk();
  ~CRecordingDisk();
  CRecordingDisk(const CRecordingDisk&) = delete;
  CRecordingDisk& operator=(const CRecordingDisk&) = delete;

  static std::vector<DiskOperation> operations();
};

// A folder on which operations are repeated, and its content after a power cut.
class CReplayedDisk {
 public:
  using Files = std::map<std::string, std::string>;  // content by name

  explicit CReplayedDisk(const Files& files) : written_(files), durable_(files) {}

  void apply(const DiskOperation& operation);
  // If the disk has kept everything, or only what was synced.
  const Files& written() const { return written_; }
  const Files& durable() const { return durable_; }

 private:
  Files written_;
  Files durable_;
  std::set<std::string> deleted_;  // and may be back after a power cut
};

}  // namespace zt_transfers::test
