#include "upload/multipart_aborter.h"

#include <exception>
#include <utility>

#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CSessionAborts::abort(const DiscardOrder& order) {
  const auto place = calls_.emplace(calls_.end());
  const auto done = [this, place, id = order.id](const HttpAnswer& answer) {
    const AttemptOutcome outcome = judgeAbort(answer, tools_.loop.clock().secondsSince1970());
    calls_.erase(place);
    tools_.observer.onDiscarded(id, outcome);
  };
  try {
    *place = std::make_unique<CStoreCall>(
        tools_.loop, tools_.log, abortRequest(order.leftover.resume.upload(), order.proxy), done);
  } catch (const std::exception& error) {
    calls_.erase(place);
    tools_.observer.onDiscarded(order.id, AttemptOutcome::final(error.what()));
  }
}

void CSessionAborts::abortOnceBegun(std::unique_ptr<CStoreCall> initiation,
                                    const UploadSession& session) {
  const auto place = calls_.insert(calls_.end(), std::move(initiation));
  (*place)->setDone([this, place, session](const HttpAnswer& answer) {
    UploadSession begun = session;
    begun.uploadId = judgeInitiation(answer, tools_.loop.clock().secondsSince1970()).uploadId;
    calls_.erase(place);
    tools_.observer.onLeftBehind({.resume = begun});
  });
}

}  // namespace zt_transfers
