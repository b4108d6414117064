#pragma once

#include <list>
#include <memory>
#include <string>

#include "engine/upload_session.h"
#include "upload/store_call.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// Tells servers that uploads in parts are not gone on with, so that they need not keep the parts.
// It is asked once each; what a server does not hear it keeps until it clears up by itself.
//
// Thread: the loop's.
class CSessionAborts {
 public:
  explicit CSessionAborts(const UploadTools& tools) : tools_(tools) {}

  void abort(const UploadSession& session, const std::string& proxy);
  // Takes over a request to begin an upload; what it begins is aborted. `session` has the place.
  void abortOnceBegun(std::unique_ptr<CStoreCall> initiation, const UploadSession& session,
                      const std::string& proxy);
  void clear() { calls_.clear(); }

 private:
  using Calls = std::list<std::unique_ptr<CStoreCall>>;

  const UploadTools tools_;
  Calls calls_;
};

}  // namespace zt_transfers
