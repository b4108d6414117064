#include "engine/file_report.h"

#include <algorithm>
#include <utility>

namespace zt_transfers {

FileState reportOf(const CTransferGroup& group, std::uint32_t index, std::string fileId,
                   const RunningAttempt* attempt, std::uint64_t kept, TimePoint now) {
  const FileSlot& slot = group.file(index);
  FileState state;
  state.groupId = group.id();
  state.bucketId = group.identity().bucketId;
  state.fileId = std::move(fileId);
  state.state = publicState(slot.phase);
  state.bytesTotal = slot.size;
  if (slot.phase == FilePhase::kCompleted) {
    state.bytesTransferred = slot.size;
    state.percentTransferred = 100.0F;
    return state;
  }
  state.bytesTransferred = std::min(attempt != nullptr ? attempt->counted : kept, slot.size);
  if (attempt != nullptr) {
    state.bytesTransferredPerSecond = attempt->rate.bytesPerSecond(now);
  }
  if (slot.size != 0) {
    state.percentTransferred = static_cast<float>(
        100.0 * static_cast<double>(state.bytesTransferred) / static_cast<double>(slot.size));
  }
  return state;
}

}  // namespace zt_transfers
