#pragma once

#include <list>
#include <memory>

#include "engine/attempt.h"
#include "upload/store_request.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// Tells servers that uploads in parts are not gone on with, so that they need not keep the parts.
// The observer is told how that went, and gives what is to be tried again.
//
// Thread: the loop's.
class CMultipartAborter {
 public:
  explicit CMultipartAborter(const UploadDependencies& dependencies)
      : dependencies_(dependencies) {}

  void abort(const CleanupTask& order);
  // Takes over a request to begin an upload; what it begins is left behind. `session` has the
  // place.
  void abortOnceBegun(std::unique_ptr<CStoreRequest> initiation, const UploadSession& session);
  void clear() { calls_.clear(); }

 private:
  using Dependencies = std::list<std::unique_ptr<CStoreRequest>>;

  const UploadDependencies dependencies_;
  Dependencies calls_;
};

}  // namespace zt_transfers
