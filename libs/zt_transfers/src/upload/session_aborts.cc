#include "upload/session_aborts.h"

#include <exception>
#include <utility>

#include "text/url_parts.h"
#include "upload/multipart_request.h"
#include "upload/multipart_verdict.h"

namespace zt_transfers {

void CSessionAborts::abort(const UploadSession& session, const std::string& proxy) {
  const std::string name = "the upload in parts to " + loggableUrl(session.url);
  const auto place = calls_.emplace(calls_.end());
  const auto done = [this, place, name](const HttpAnswer& answer) {
    const bool heard =
        answer.code == CURLE_OK && (answer.status / 100 == 2 || answer.status == 404);
    if (heard) {
      tools_.log.information("Aborted " + name);
    } else {
      tools_.log.warning("The server did not abort " + name + ", and may keep its parts: " +
                         (answer.code == CURLE_OK ? "it answered " + std::to_string(answer.status)
                                                  : answer.error));
    }
    calls_.erase(place);
  };
  try {
    *place =
        std::make_unique<CStoreCall>(tools_.loop, tools_.log, abortRequest(session, proxy), done);
  } catch (const std::exception& error) {
    tools_.log.warning("Cannot abort " + name + ": " + error.what());
    calls_.erase(place);
  }
}

void CSessionAborts::abortOnceBegun(std::unique_ptr<CStoreCall> initiation,
                                    const UploadSession& session, const std::string& proxy) {
  const auto place = calls_.insert(calls_.end(), std::move(initiation));
  (*place)->setDone([this, place, session, proxy](const HttpAnswer& answer) {
    UploadSession begun = session;
    begun.uploadId = judgeInitiation(answer, tools_.loop.clock().secondsSince1970()).uploadId;
    if (begun.begun()) {
      abort(begun, proxy);
    }
    calls_.erase(place);
  });
}

}  // namespace zt_transfers
