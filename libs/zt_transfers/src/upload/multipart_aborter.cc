#include "upload/multipart_aborter.h"

#include <exception>
#include <utility>

#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CMultipartAborter::abort(const CleanupTask& order) {
  const auto request = requests_.emplace(requests_.end());
  const auto done = [this, request, id = order.id](const HttpResponse& response) {
    const AttemptOutcome outcome =
        judgeAbort(response, dependencies_.loop.clock().secondsSince1970());
    retire(request);
    dependencies_.observer.onCleanedUp(id, outcome);
  };
  try {
    *request = std::make_unique<CTextRequest>(
        dependencies_.loop, dependencies_.log,
        abortRequest(order.orphan.resume.upload(), order.proxy), done);
  } catch (const std::exception& error) {
    requests_.erase(request);
    dependencies_.observer.onCleanedUp(order.id, AttemptOutcome::final(error.what()));
  }
}

void CMultipartAborter::abortOnceBegun(std::unique_ptr<CTextRequest> initiation,
                                       const UploadSession& session) {
  const auto request = requests_.insert(requests_.end(), std::move(initiation));
  (*request)->setDone([this, request, session](const HttpResponse& response) {
    UploadSession begun = session;
    begun.uploadId =
        judgeInitiation(response, dependencies_.loop.clock().secondsSince1970()).uploadId;
    retire(request);
    dependencies_.observer.onOrphaned({.resume = begun});
  });
}

void CMultipartAborter::retire(Requests::iterator request) {
  dependencies_.loop.retire(std::move(*request));
  requests_.erase(request);
}

}  // namespace zt_transfers
