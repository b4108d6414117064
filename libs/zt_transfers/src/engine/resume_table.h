#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "engine/file_spec.h"
#include "engine/transfer_group.h"
#include "engine/transfer_resume.h"

namespace zt_transfers {

// The resume data of files that are not running. Their bytes stay counted as in flight, so that a
// pause loses no progress.
//
// Thread: none of its own; the engine guards it.
class CResumeTable {
 public:
  struct FileResume {
    std::uint32_t index = 0;
    TransferResume resume;
  };

  // Keeps the resume data and counts its bytes. Data that was not begun removes the entry.
  void keep(CTransferGroup& group, std::uint32_t index, const TransferResume& resume);
  // Not begun when there is no entry.
  TransferResume take(CTransferGroup& group, std::uint32_t index);
  std::vector<FileResume> takeAll(CTransferGroup& group);
  // The file's size has changed.
  void recount(CTransferGroup& group, std::uint32_t index) {
    keep(group, index, take(group, index));
  }
  // Bytes of the file that are counted.
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
