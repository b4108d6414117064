#include "upload/upload_verdict.h"

#include "engine/response_verdict.h"
#include "http/error_document.h"
#include "http/etag.h"
#include "base/ascii.h"

namespace zt_transfers {
namespace {

// An object that the store encrypts with a key of its own has a tag that looks like a digest of
// the content, but is none.
bool etagIsDigest(const HttpAnswer& answer) {
  return !startsWithIgnoringCase(answer.header("x-amz-server-side-encryption"), "aws:kms") &&
         answer.header("x-amz-server-side-encryption-customer-algorithm").empty();
}

}  // namespace

std::optional<std::string> storedDigest(const HttpAnswer& answer) {
  return etagIsDigest(answer) ? md5OfETag(answer.header("etag")) : std::nullopt;
}

AttemptOutcome otherContent(const std::string& stored, const std::string& sent) {
  return AttemptOutcome::retry(
      "the server has other content: MD5 " + stored + " instead of " + sent, failure::kWrongDigest);
}

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
  const auto stored = storedDigest(answer);
  if (!md5.empty() && stored && *stored != md5) {
    return otherContent(*stored, md5);
  }
  return AttemptOutcome::done();
}

}  // namespace zt_transfers
