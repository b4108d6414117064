#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "base/file_ops.h"

namespace zt_transfers::test {

// A disk that can be made to fail or to hang, and that counts what it does. Thread: any.
class CTroubledFileOps : public CPosixFileOps {
 public:
  // The next syncs of files fail and lose all bytes written since the last good one.
  std::atomic<int> failingSyncs{0};
  // Each write and each sync of a file's content waits for this mutex.
  std::mutex busy;
  std::atomic<int> waiting{0};
  std::atomic<int> opened{0};
  std::atomic<std::uint64_t> bytesRead{0};

  CUniqueFd open(int folder, const char* name) override;
  ssize_t read(int file, char* data, std::size_t size, std::uint64_t offset) override;
  ssize_t write(int file, const char* data, std::size_t size, std::uint64_t offset) override;
  bool syncContent(int file) override;
  bool sync(int file) override;

 private:
  struct Unsynced {
    std::uint64_t offset = 0;
    std::size_t size = 0;
  };

  void wait();
  bool fails(int file);

  std::mutex mutex_;
  std::map<ino_t, std::vector<Unsynced>> unsynced_;  // guarded by mutex_
};

}  // namespace zt_transfers::test
