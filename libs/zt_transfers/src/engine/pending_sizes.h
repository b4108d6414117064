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

// Uploads whose sources are still to be statted, in this order.
//
// Thread: none of its own; the engine guards it.
class CPendingSizes {
 public:
  struct File {
    FileRef file;
    std::string location;
  };

  void add(FileRef file) { files_.push_back(file); }
  void clear() { *this = CPendingSizes(); }
  // Whether `take` can return files now.
  bool ready() const { return !files_.empty() && !loading_; }
  // Up to `limit` files that `isWanted` still accepts. Stops at a file whose description must be
  // loaded first.
  std::vector<File> take(std::size_t limit, IQueueStore& store,
                         const std::function<bool(FileRef)>& isWanted);
  void onSpecsArrived() { loading_ = false; }

 private:
  std::deque<FileRef> files_;
  bool loading_ = false;
};

}  // namespace zt_transfers
