#include "upload/multipart_verdict.h"

#include "engine/response_verdict.h"
#include "http/error_document.h"
#include "http/etag.h"
#include "upload/multipart_messages.h"

namespace zt_transfers {
namespace {

bool isSuccess(long status) {
  return status == 200 || status == 201 || status == 204;
}

bool isRefusedForGood(long status) {
  return status >= 400 && status < 500 && status != 401 && status != 403 && status != 408 &&
         status != 429;
}

AttemptOutcome errorDocument(const HttpAnswer& answer, const std::string& code) {
  return AttemptOutcome::retry("the server answered " + std::to_string(answer.status) +
                                   " with an error document (" + code + ")",
                               failure::kServerTrouble);
}

}  // namespace

Initiation judgeInitiation(const HttpAnswer& answer, std::int64_t now) {
  if (answer.code == CURLE_OK && isSuccess(answer.status)) {
    if (auto uploadId = uploadIdOf(answer.body)) {
      return {.uploadId = std::move(*uploadId)};
    }
    if (const auto code = errorDocumentCode(answer.body)) {
      return {.outcome = errorDocument(answer, *code)};
    }
    return {.notOffered = true};  // it took the request for something else
  }
  const bool saysSo = answer.status == 405 || answer.status == 501;
  if (answer.code == CURLE_OK && (saysSo || isRefusedForGood(answer.status))) {
    return {.notOffered = true, .saysSo = saysSo};
  }
  return {.outcome = judgeFailure(answer, now)};
}

AttemptOutcome judgeFailure(const HttpAnswer& answer, std::int64_t now) {
  return answer.code != CURLE_OK ? judgeTransport(answer) : judgeRefusal(answer, now);
}

bool saysUploadIsGone(const HttpAnswer& answer) {
  return answer.code == CURLE_OK && (answer.status == 404 || answer.status == 410);
}

bool asksForAuthority(const HttpAnswer& answer) {
  return answer.status == 401 || answer.status == 403;
}

AttemptOutcome judgeAbort(const HttpAnswer& answer, std::int64_t now) {
  const bool heard = answer.code == CURLE_OK && answer.status / 100 == 2;
  return heard || saysUploadIsGone(answer) ? AttemptOutcome::done() : judgeFailure(answer, now);
}

CompletionVerdict judgeCompletion(const HttpAnswer& answer, const std::optional<std::string>& tag,
                                  std::int64_t now) {
  if (answer.code != CURLE_OK || !isSuccess(answer.status)) {
    AttemptOutcome outcome = judgeFailure(answer, now);
    const auto code = errorDocumentCode(answer.body);
    if (code == "InvalidPart" || code == "InvalidPartOrder") {
      // What it has will be asked for again.
      outcome = AttemptOutcome::retry(outcome.reason, failure::kServerTrouble);
    }
    return {Completion::kFailed, outcome};
  }
  if (const auto code = errorDocumentCode(answer.body)) {
    return {Completion::kFailed, errorDocument(answer, *code)};
  }
  const auto etag = completedETagOf(answer.body);
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

bool showsObject(const HttpAnswer& answer, std::uint64_t size,
                 const std::optional<std::string>& tag) {
  return answer.code == CURLE_OK && answer.status == 200 && tag &&
         compositeOfETag(answer.header("etag")) == tag &&
         answer.header("content-length") == std::to_string(size);
}

}  // namespace zt_transfers
