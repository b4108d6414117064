#pragma once

#include <cstdint>
#include <string>

#include "zt_transfers/export.h"

namespace zt_transfers {

// Common base of both managers.
//
// Thread: the program calls a manager from one thread; the manager's work happens on threads of
// its own, on which it also calls its callbacks.
class ZT_TRANSFERS_EXPORT CTransferManagerBase {
 public:
  struct Configuration {
    std::uint32_t maxConcurrentTransfers = 8;
    std::uint64_t minMultipartSize = 64ULL * 1024 * 1024;  // bytes
    std::uint32_t maxTransferRetries = 5;
    bool verifyUploads = true;
    bool preventSleep = true;
    std::uint64_t throttleBytesPerSecond = 0;  // 0: no limit
    std::uint64_t partSize = 0;                // bytes; 0: chosen by the library
    std::string proxy;                         // empty: the system's
  };

  CTransferManagerBase() = default;
  CTransferManagerBase(const CTransferManagerBase&) = delete;
  CTransferManagerBase& operator=(const CTransferManagerBase&) = delete;
  virtual ~CTransferManagerBase() = default;

  // Begins to transfer. Calling it again while it runs changes nothing.
  virtual void startup() = 0;
  // Stops all transfers and joins the manager's threads; no callback follows its return. Files
  // that were not done stay queued. Calling it again, or without `startup`, changes nothing.
  virtual void shutdown() = 0;
};

}  // namespace zt_transfers
