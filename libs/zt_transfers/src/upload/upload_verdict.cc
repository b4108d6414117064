#include "upload/upload_verdict.h"

#include "http/answer_verdict.h"
#include "http/error_document.h"
#include "http/etag.h"
#include "text/ascii.h"

namespace zt_transfers {
namespace {

// An object that the store encrypts with a key of its own has a tag that looks like a digest of
// the content, but is none.
bool etagIsDigest(const HttpAnswer& answer) {
  return !startsWithIgnoringCase(answer.header("x-amz-server-side-encryption"), "aws:kms") &&
         answer.header("x-amz-server-side-encryption-customer-algorithm").empty();
}

}  // namespace

AttemptOutcome judgeUpload(const HttpAnswer& answer, std::uint64_t size, const std::string& md5,
                           std::int64_t now) {
  if (answer.code != CURLE_OK) {
    return judgeTransport(answer);
  }
  if (answer.status != 200 && answer.status != 201 && answer.status != 204) {
    return judgeRefusal(answer, now);
  }
  if (const auto code = errorDocumentCode(answer.body)) {
    return AttemptOutcome::retry("the server answered " + std::to_string(answer.status) +
                                     " with an error document (" + *code + ")",
                                 failure::kServerTrouble);
  }
  if (answer.bytesSent != size) {
    return AttemptOutcome::retry("the server answered after " + std::to_string(answer.bytesSent) +
                                     " of " + std::to_string(size) + " bytes",
                                 failure::kServerTrouble);
  }
  const auto digest = md5OfETag(answer.header("etag"));
  if (!md5.empty() && digest && etagIsDigest(answer) && *digest != md5) {
    return AttemptOutcome::retry(
        "the server has other content: MD5 " + *digest + " instead of " + md5,
        failure::kWrongDigest);
  }
  return AttemptOutcome::done();
}

}  // namespace zt_transfers
