#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/upload_session.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// Persists an attempt's upload session on the pool, then checks that the source is unchanged.
// Destruction ends it without a report.
//
// Thread: the loop's. `done` is not called from within the constructor.
class CSessionFlush {
 public:
  // `change` tells how the source was changed.
  using Done = std::function<void(const std::optional<AttemptOutcome>& change)>;

  CSessionFlush(const UploadDependencies& dependencies, AttemptId attemptId, std::string path,
                const SourceVersion& version, Done done);

 private:
  const std::shared_ptr<const Done> done_;  // the job looks for it on the loop's thread only
};

}  // namespace zt_transfers
