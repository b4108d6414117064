#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "engine/file_spec.h"
#include "engine/queue_store.h"

namespace zt_transfers {

// Uploads whose size is not known yet, in the order in which it is to be found out.
//
// Thread: none of its own; the engine guards it.
class CPendingSizes {
 public:
  struct File {
    FileRef file;
    std::string place;
  };

  void add(FileRef file) { files_.push_back(file); }
  void clear() { *this = CPendingSizes(); }
  // Whether `take` can give something now.
  bool ready() const { return !files_.empty() && !coming_; }
  // Up to `limit` of those that `isWanted` still accepts. Stops where a file's description has to
  // be brought first.
  std::vector<File> take(std::size_t limit, IQueueStore& store,
                         const std::function<bool(FileRef)>& isWanted);
  // Descriptions have come.
  void reschedule() { coming_ = false; }

 private:
  std::deque<FileRef> files_;
  bool coming_ = false;
};

}  // namespace zt_transfers
