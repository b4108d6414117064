#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/unique_fd.h"

namespace zt_transfers {

// The system calls on the target's files and folders: the seam between downloads and the file
// system, which tests replace to fail a call or to lose unsynced changes. Only descriptors are
// closed without it (CUniqueFd), which also gives up a file's lock.
//
// Names are relative to an open folder; AT_FDCWD stands for none. A call that fails returns false,
// -1 or an invalid descriptor and leaves the reason in errno. Thread: any; calls block.
class IFileOps {
 public:
  virtual ~IFileOps() = default;

  enum class Links { kFollow, kRefuse };  // symbolic ones

  virtual CUniqueFd openFolder(int parent, const char* name, Links links) = 0;
  // An existing file, for reading and writing. Symbolic links are refused.
  virtual CUniqueFd open(int folder, const char* name) = 0;
  // A new, empty file, open for reading and writing. EEXIST: the name is taken.
  virtual CUniqueFd create(int folder, const char* name) = 0;
  // Locks the file until its descriptor is closed. EWOULDBLOCK: another descriptor has the lock.
  virtual bool lock(int file) = 0;
  virtual bool status(int file, struct stat& status) = 0;
  // Of a symbolic link itself.
  virtual bool statusOfName(int folder, const char* name, struct stat& status) = 0;
  // Reads at `offset` and returns how many bytes it read; 0 at the end of the file.
  virtual ssize_t read(int file, char* data, std::size_t size, std::uint64_t offset) = 0;
  // Writes at `offset` and returns how many bytes it wrote.
  virtual ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) = 0;
  // Removes all content.
  virtual bool truncate(int file) = 0;
  // Reserves disk space for `size` bytes. The file's length does not change.
  virtual bool reserve(int file, std::uint64_t size) = 0;
  // Sets the times of the last change and of the last access.
  virtual bool setTimes(int file, timespec time) = 0;
  // Sets an extended attribute. Not every system and file system has them.
  virtual bool setAttribute(int file, const char* name, std::string_view value) = 0;

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
  // Whether syncFileSystem does what it says on this file's file system. Those of other machines
  // and processes (NFS, SMB, FUSE) do not pass it on.
  virtual bool hasFileSystemSync(int file) = 0;
  // Makes everything on the file's file system durable. ENOTSUP: the system has no such call.
  virtual bool syncFileSystem(int file) = 0;
  // After syncFileSystem: whether every byte of this file was written.
  virtual bool contentWritten(int file) = 0;
  // Starts to write these bytes to the disk so that a later sync has less left to do.
  virtual void startWriting(int file, std::uint64_t begin, std::uint64_t end) = 0;
};

// The file's status. Throws std::system_error.
struct stat statusOf(IFileOps& ops, int file);

class CPosixFileOps : public IFileOps {
 public:
  CUniqueFd openFolder(int parent, const char* name, Links links) override;
  CUniqueFd open(int folder, const char* name) override;
  CUniqueFd create(int folder, const char* name) override;
  bool lock(int file) override;
  bool status(int file, struct stat& status) override;
  bool statusOfName(int folder, const char* name, struct stat& status) override;
  ssize_t read(int file, char* data, std::size_t size, std::uint64_t offset) override;
  ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) override;
  bool truncate(int file) override;
  bool reserve(int file, std::uint64_t size) override;
  bool setTimes(int file, timespec time) override;
  bool setAttribute(int file, const char* name, std::string_view value) override;
  bool makeFolder(int parent, const char* name) override;
  bool renameWithoutReplacing(int folder, const char* from, const char* to) override;
  bool rename(int folder, const char* from, const char* to) override;
  bool link(int folder, const char* from, const char* to) override;
  bool unlink(int folder, const char* name) override;

  // These are implemented by each system.
  bool syncContent(int file) override;
  bool sync(int file) override;
  bool hasFileSystemSync(int file) override;
  bool syncFileSystem(int file) override;
  bool contentWritten(int file) override;
  void startWriting(int file, std::uint64_t begin, std::uint64_t end) override;

 private:
  bool allocate(int file, std::uint64_t size);
  bool renameExclusively(int folder, const char* from, const char* to);
};

}  // namespace zt_transfers
