#pragma once

#include <cstdint>
#include <string>

#include "zt_transfers/export.h"

namespace zt_transfers {

// State of a group of files, as the library reports it. Values are part of the interface.
enum GroupStateCode : std::int32_t {
  kGroupIdle = 0,  // created, nothing queued or nothing running yet
  kGroupTransferring = 1,
  kGroupErrored = 2,
  kGroupCompleted = 3,
  kGroupPaused = 4,
};

// State of one file. The numbering differs from the groups' and must be kept apart from it.
enum FileStateCode : std::int32_t {
  kFileTransferring = 0,
  kFileCompleted = 1,
  kFileErrored = 2,
  kFilePaused = 3,
  kFileWaiting = 4,  // queued, not begun
};

// The state that groups of both kinds report. Sizes in bytes, rates in bytes per second.
struct ZT_TRANSFERS_EXPORT GroupStateBase {
  std::int32_t state = kGroupIdle;
  std::string bucketType;
  std::int32_t id = 0;
  std::string bucketId;
  std::uint64_t bytesTransferred = 0;
  std::uint64_t bytesTotal = 0;
  std::uint64_t bytesTransferredPerSecond = 0;
  float percentTransferred = 0.0F;  // 0 to 100
  std::uint64_t estimatedEta = 0;   // seconds left; 0 when unknown or done
  bool empty = true;
  bool paused = false;
  bool cancelled = false;
};

// One file of a group. A record given to a callback is valid only during the call.
struct ZT_TRANSFERS_EXPORT FileState {
  std::int32_t groupId = 0;
  std::string bucketId;
  std::string fileId;
  std::int32_t state = kFileWaiting;
  std::uint64_t bytesTransferred = 0;
  std::uint64_t bytesTotal = 0;
  std::uint64_t bytesTransferredPerSecond = 0;
  float percentTransferred = 0.0F;  // 0 to 100
};

}  // namespace zt_transfers
