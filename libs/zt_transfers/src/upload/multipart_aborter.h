#pragma once

#include <list>
#include <memory>

#include "engine/attempt.h"
#include "http/text_request.h"
#include "upload/upload_dependencies.h"

namespace zt_transfers {

// Aborts multipart uploads that will not be resumed, so that servers can delete their parts. The
// observer is told of each outcome and repeats the task if need be.
//
// Thread: the loop's.
class CMultipartAborter {
 public:
  explicit CMultipartAborter(const UploadDependencies& dependencies)
      : dependencies_(dependencies) {}

  void abort(const CleanupTask& order);
  // Takes over a request that initiates an upload. The upload that it initiates is reported as an
  // orphan; `session` has its URL and headers.
  void abortOnceBegun(std::unique_ptr<CTextRequest> initiation, const UploadSession& session);
  void clear() { requests_.clear(); }

 private:
  using Requests = std::list<std::unique_ptr<CTextRequest>>;

  void retire(Requests::iterator request);

  const UploadDependencies dependencies_;
  Requests requests_;
};

}  // namespace zt_transfers
