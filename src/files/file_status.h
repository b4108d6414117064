#pragma once

#include <cstdint>
#include <string>

namespace zantrio {

// The properties of a file or folder. Symbolic links are followed.
struct FileStatus {
  enum class Kind { kRegularFile, kDirectory, kOther };

  // Identifies the item; equal for all paths that lead to it.
  struct Identity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const Identity&) const = default;
  };

  Kind kind = Kind::kOther;
  Identity identity;
  std::uint64_t size = 0;           // bytes
  std::int64_t modifiedMicros = 0;  // since the Unix epoch
  // The creation time, or the time of the last status change on file systems without one.
  std::int64_t createdMicros = 0;  // since the Unix epoch

  bool isDirectory() const { return kind == Kind::kDirectory; }
  bool isRegularFile() const { return kind == Kind::kRegularFile; }
};

// Fills in `status` with one system call. Returns 0, or the error number with `status` unchanged.
// Implemented by each platform. Thread: any.
int readFileStatus(const std::string& path, FileStatus& status);

// The same for an entry of an open folder, which saves resolving the path above it.
int readFileStatus(int folder, const std::string& name, FileStatus& status);

// Saturates for times that do not fit in microseconds.
std::int64_t toMicroseconds(std::int64_t seconds, std::int64_t nanoseconds);

}  // namespace zantrio
