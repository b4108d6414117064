#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/log.h"
#include "base/mutex.h"
#include "base/unique_fd.h"

namespace zt_transfers {

// The library's log file, one line a message:
//   [11-22-26 21:24:05:123] [12345 zt-net-up] [Information] message
// Past its size limit it becomes "<name>.0" (an older one of that name is dropped) and a new file
// begins.
//
// Thread: any. A folder that cannot be written to is told once on standard error; what is
// logged is lost then, and nothing else.
class CTransferLog : public ILog {
 public:
  static constexpr std::uint64_t kDefaultLimit = 2ULL * 1024 * 1024;  // bytes

  // The log of this folder, shared by everyone in the process that asks for the same.
  static std::shared_ptr<CTransferLog> inFolder(const std::string& folder);

  explicit CTransferLog(const std::string& path, std::uint64_t limit = kDefaultLimit);

  void write(Priority priority, std::string_view message) noexcept override;

 private:
  void open() REQUIRES(mutex_);
  void rotate() REQUIRES(mutex_);
  void complain(int error) REQUIRES(mutex_);

  // Constant after construction.
  const std::string path_;
  const std::uint64_t limit_;

  CMutex mutex_;
  CUniqueFd file_ GUARDED_BY(mutex_);
  std::uint64_t size_ GUARDED_BY(mutex_) = 0;
  bool complained_ GUARDED_BY(mutex_) = false;
};

}  // namespace zt_transfers
