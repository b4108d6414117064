#include "upload/multipart_aborter.h"

#include <exception>
#include <utility>

#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CMultipartAborter::abort(const CleanupTask& order) {
  const auto place = calls_.emplace(calls_.end());
  const auto done = [this, place, id = order.id](const HttpResponse& response) {
    const AttemptOutcome outcome =
        judgeAbort(response, dependencies_.loop.clock().secondsSince1970());
    calls_.erase(place);
    dependencies_.observer.onCleanedUp(id, outcome);
  };
  try {
    *place = std::make_unique<CStoreRequest>(
        dependencies_.loop, dependencies_.log,
        abortRequest(order.orphan.resume.upload(), order.proxy), done);
  } catch (const std::exception& error) {
    calls_.erase(place);
    dependencies_.observer.onCleanedUp(order.id, AttemptOutcome::final(error.what()));
  }
}

void CMultipartAborter::abortOnceBegun(std::unique_ptr<CStoreRequest> initiation,
                                       const UploadSession& session) {
  const auto place = calls_.insert(calls_.end(), std::move(initiation));
  (*place)->setDone([this, place, session](const HttpResponse& response) {
    UploadSession begun = session;
    begun.uploadId =
        judgeInitiation(response, dependencies_.loop.clock().secondsSince1970()).uploadId;
    calls_.erase(place);
    dependencies_.observer.onOrphaned({.resume = begun});
  });
}

}  // namespace zt_transfers
