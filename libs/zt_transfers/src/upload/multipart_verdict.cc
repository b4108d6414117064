#include "upload/multipart_verdict.h"

#include <utility>

#include "engine/response_verdict.h"
#include "http/error_document.h"
#include "http/etag.h"
#include "upload/multipart_messages.h"

namespace zt_transfers {
namespace {

bool isSuccess(long status) {
  return status == 200 || status == 201 || status == 204;
}

}  // namespace

Initiation judgeInitiation(const HttpResponse& response, std::int64_t now) {
  if (response.code == CURLE_OK && isSuccess(response.status)) {
    if (auto uploadId = uploadIdOf(response.body)) {
      return {.uploadId = std::move(*uploadId)};
    }
    if (errorDocumentCode(response.body)) {
      return {.outcome = judgeRefusal(response, now)};
    }
    return {.unsupported = true};  // it mistook the request
  }
  AttemptOutcome outcome = judgeFailure(response, now);
  const bool heard = response.code == CURLE_OK;
  const bool permanent = response.status == 405 || response.status == 501;
  // A signed URL is good for PUT alone, so that a 401 or 403 may mean no more than this request.
  const bool refused = outcome.code == failure::kRefused && response.status / 100 == 4;
  if (heard && (permanent || refused)) {
    return {.unsupported = true, .permanent = permanent};
  }
  return {.outcome = std::move(outcome)};
}

AttemptOutcome judgeFailure(const HttpResponse& response, std::int64_t now) {
  return response.code != CURLE_OK ? judgeTransport(response, now) : judgeRefusal(response, now);
}

bool saysUploadIsGone(const HttpResponse& response) {
  return response.code == CURLE_OK && (response.status == 404 || response.status == 410);
}

bool asksForAuthority(const HttpResponse& response) {
  return response.status == 401 || response.status == 403;
}

AttemptOutcome judgeAbort(const HttpResponse& response, std::int64_t now) {
  const bool heard = response.code == CURLE_OK && response.status / 100 == 2;
  return heard || saysUploadIsGone(response) ? AttemptOutcome::done() : judgeFailure(response, now);
}

CompletionVerdict judgeCompletion(const HttpResponse& response,
                                  const std::optional<std::string>& tag, std::int64_t now) {
  if (response.code != CURLE_OK || !isSuccess(response.status)) {
    AttemptOutcome outcome = judgeFailure(response, now);
    const auto code = errorDocumentCode(response.body);
    if (code == "InvalidPart" || code == "InvalidPartOrder") {
      // The next attempt lists the server's parts again.
      outcome = AttemptOutcome::retry(outcome.reason, failure::kServerTrouble);
    }
    return {Completion::kFailed, outcome};
  }
  if (errorDocumentCode(response.body)) {
    return {Completion::kFailed, judgeRefusal(response, now)};
  }
  const auto etag = completedETagOf(response.body);
  if (!etag) {
    return {Completion::kFailed,
            AttemptOutcome::retry("the server did not confirm that it put the parts together",
                                  failure::kServerTrouble)};
  }
  const auto given = compositeOfETag(*etag);
  if (tag && given && *given != *tag) {
    return {Completion::kOtherContent, AttemptOutcome::retry("the server has other content: ETag " +
                                                                 *given + " instead of " + *tag,
                                                             failure::kWrongDigest)};
  }
  return {Completion::kDone, AttemptOutcome::done()};
}

bool showsObject(const HttpResponse& response, std::uint64_t size,
                 const std::optional<std::string>& tag) {
  return response.code == CURLE_OK && response.status == 200 && tag &&
         compositeOfETag(response.header("etag")) == tag &&
         response.header("content-length") == std::to_string(size);
}

}  // namespace zt_transfers
