#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "engine/file_spec.h"
#include "engine/transfer_group.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// The partial files and sessions that attempts have left behind. Their bytes stay counted in their
// groups as in flight, so that a pause takes no progress away.
//
// Thread: none of its own; the engine guards it.
class CResumeTable {
 public:
  struct Left {
    std::uint32_t index = 0;
    TransferResume resume;
  };

  // Keeps what was left of the file and counts it; nothing begun forgets the file.
  void keep(CTransferGroup& group, std::uint32_t index, const TransferResume& resume);
  // Nothing begun when there is none.
  TransferResume take(CTransferGroup& group, std::uint32_t index);
  std::vector<Left> takeAll(CTransferGroup& group);
  // How many bytes of the file are there already.
  std::uint64_t counted(FileRef file) const;

 private:
  struct Entry {
    TransferResume resume;
    std::uint64_t counted = 0;
  };
  using Key = std::pair<std::int32_t, std::uint32_t>;

  std::map<Key, Entry> entries_;
};

}  // namespace zt_transfers
