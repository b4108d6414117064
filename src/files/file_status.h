#pragma once

#include <cstdint>
#include <string>

namespace zantrio {

// What the file system tells about an item; a symbolic link tells about what it leads to.
struct FileStatus {
  enum class Kind { kRegularFile, kDirectory, kOther };

  // Tells items apart; the same for all paths that lead to one item.
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const Identity&) const = default;
  };

  Kind kind = Kind::kOther;
  Identity identity;
  std::uint64_t size = 0;           // bytes
  std::int64_t modifiedMicros = 0;  // since the Unix epoch
  // The birth time; where the file system keeps none, the time of the last status change.
  std::int64_t createdMicros = 0;  // since the Unix epoch

  bool isDirectory() const { return kind == Kind::kDirectory; }
  bool isRegularFile() const { return kind == Kind::kRegularFile; }
};

// Fills `status` by one question to the file system; 0, or the error number with `status`
// untouched. Done by the platform. Thread: any.
int readFileStatus(const std::string& path, FileStatus& status);

// The same for an entry of an open folder, which spares the way through the folders above it.
int readFileStatus(int folder, const std::string& name, FileStatus& status);

// Saturates where the time is too far away to be counted in microseconds.
std::int64_t toMicroseconds(std::int64_t seconds, std::int64_t nanoseconds);

}  // namespace zantrio
