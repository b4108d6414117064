#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "engine/download_resume.h"
#include "engine/file_spec.h"
#include "engine/transfer_group.h"

namespace zt_transfers {

// The partial files that attempts have left behind. The bytes in them stay counted in their
// groups as in flight, so that a pause takes no progress away.
//
// Thread: none of its own; the engine guards it.
class CResumeBook {
 public:
  struct Left {
    std::uint32_t index = 0;
    DownloadResume resume;
  };

  // Keeps what was left of the file and counts it; nothing begun forgets the file.
  void keep(CTransferGroup& group, std::uint32_t index, const DownloadResume& resume);
  // Nothing begun when there is none.
  DownloadResume take(CTransferGroup& group, std::uint32_t index);
  std::vector<Left> takeAll(CTransferGroup& group);
  // How many bytes of the file are there already.
  std::uint64_t counted(FileRef file) const;

 private:
  struct Entry {
    DownloadResume resume;
    std::uint64_t counted = 0;
  };
  using Key = std::pair<std::int32_t, std::uint32_t>;

  std::map<Key, Entry> entries_;
};

}  // namespace zt_transfers
