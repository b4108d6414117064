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
class CSessionAborts {
 public:
  explicit CSessionAborts(const UploadTools& tools) : tools_(tools) {}

  void abort(const DiscardOrder& order);
  // Takes over a request to begin an upload; what it begins is left behind. `session` has the
  // place.
  void abortOnceBegun(std::unique_ptr<CStoreCall> initiation, const UploadSession& session);
  void clear() { calls_.clear(); }

 private:
  using Calls = std::list<std::unique_ptr<CStoreCall>>;

  const UploadTools tools_;
  Calls calls_;
};

}  // namespace zt_transfers
