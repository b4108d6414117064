#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

#include "base/unique_fd.h"

namespace zt_transfers {

// The system calls that change files and folders or make changes durable: the seam between
// downloads and the file system, which tests replace to fail a call or to lose unsynced changes.
//
// Names are relative to an open folder. A call that fails returns false, -1 or an invalid
// descriptor and leaves the reason in errno. Thread: any; calls block.
class IFileOps {
 public:
  virtual ~IFileOps() = default;

  // A new, empty file, open for reading and writing. EEXIST: the name is taken.
  virtual CUniqueFd create(int folder, const char* name) = 0;
  // Writes at `offset` and returns how many bytes it wrote.
  virtual ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) = 0;
  // Removes all content.
  virtual bool truncate(int file) = 0;
  // Reserves disk space for `size` bytes. The file's length does not change.
  virtual bool reserve(int file, std::uint64_t size) = 0;

  virtual bool makeFolder(int parent, const char* name) = 0;
  // ENOTSUP: the file system cannot do it.
  virtual bool renameWithoutReplacing(int folder, const char* from, const char* to) = 0;
  virtual bool rename(int folder, const char* from, const char* to) = 0;
  // ENOTSUP: the file system cannot do it.
  virtual bool link(int folder, const char* from, const char* to) = 0;
  virtual bool unlink(int folder, const char* name) = 0;

  // Makes a file's content durable.
  virtual bool syncContent(int file) = 0;
  // Makes a file's content and attributes durable, or the names in a folder.
  virtual bool sync(int file) = 0;
  // Makes everything on the file's file system durable. ENOTSUP: the system has no such call.
  virtual bool syncFileSystem(int file) = 0;
  // After syncFileSystem: whether every byte of this file was written.
  virtual bool contentWritten(int file) = 0;
  // Starts to write these bytes to the disk so that a later sync has less left to do.
  virtual void startWriting(int file, std::uint64_t begin, std::uint64_t end) = 0;
};

class CPosixFileOps : public IFileOps {
 public:
  CUniqueFd create(int folder, const char* name) override;
  ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) override;
  bool truncate(int file) override;
  bool reserve(int file, std::uint64_t size) override;
  bool makeFolder(int parent, const char* name) override;
  bool renameWithoutReplacing(int folder, const char* from, const char* to) override;
  bool rename(int folder, const char* from, const char* to) override;
  bool link(int folder, const char* from, const char* to) override;
  bool unlink(int folder, const char* name) override;
  bool syncContent(int file) override;
  bool sync(int file) override;
  bool syncFileSystem(int file) override;
  bool contentWritten(int file) override;
  void startWriting(int file, std::uint64_t begin, std::uint64_t end) override;
};

}  // namespace zt_transfers
