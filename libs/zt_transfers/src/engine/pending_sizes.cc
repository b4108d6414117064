#include "engine/pending_sizes.h"

#include <utility>

namespace zt_transfers {

std::vector<CPendingSizes::File> CPendingSizes::take(std::size_t limit, IQueueStore& store,
                                                     const std::function<bool(FileRef)>& isWanted) {
  std::vector<File> taken;
  while (taken.size() < limit && !files_.empty() && !loading_) {
    const FileRef file = files_.front();
    if (isWanted(file)) {
      if (auto location = store.location(file)) {
        taken.push_back({file, std::move(*location)});
      } else if (store.load(file)) {
        loading_ = true;
        continue;
      }
    }
    files_.pop_front();
  }
  return taken;
}

}  // namespace zt_transfers
