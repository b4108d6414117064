#include "upload/session_flush.h"

#include <utility>

#include "upload/source_version.h"

namespace zt_transfers {

CSessionFlush::CSessionFlush(const UploadDependencies& dependencies, AttemptId attemptId,
                             std::string path, const SourceVersion& version, Done done)
    : done_(std::make_shared<const Done>(std::move(done))) {
  dependencies.pool.post([&loop = dependencies.loop, &observer = dependencies.observer, attemptId,
                          path = std::move(path), version,
                          weakDone = std::weak_ptr<const Done>(done_)] {
    observer.keepDurably({attemptId});
    loop.post([weakDone, change = changeSince(version, path)] {
      if (const auto receiver = weakDone.lock()) {
        (*receiver)(change);
      }
    });
  });
}

}  // namespace zt_transfers
