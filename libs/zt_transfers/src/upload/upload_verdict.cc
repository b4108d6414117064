#include "upload/upload_verdict.h"

#include "base/ascii.h"
#include "engine/response_verdict.h"
#include "http/error_document.h"
#include "http/etag.h"

namespace zt_transfers {
namespace {

// The ETag of an object that is encrypted with a key of the store looks like a digest of the
// content, but is not one.
bool etagIsDigest(const HttpResponse& response) {
  return !startsWithIgnoringCase(response.header("x-amz-server-side-encryption"), "aws:kms") &&
         response.header("x-amz-server-side-encryption-customer-algorithm").empty();
}

}  // namespace

std::optional<std::string> storedDigest(const HttpResponse& response) {
  return etagIsDigest(response) ? md5OfETag(response.header("etag")) : std::nullopt;
}

AttemptOutcome otherContent(const std::string& stored, const std::string& sent) {
  return AttemptOutcome::retry(
      "the server has other content: MD5 " + stored + " instead of " + sent, failure::kWrongDigest);
}

AttemptOutcome judgeUpload(const HttpResponse& response, std::uint64_t size, const std::string& md5,
                           std::int64_t now) {
  if (response.code != CURLE_OK) {
    return judgeTransport(response, now);
  }
  const bool success = response.status == 200 || response.status == 201 || response.status == 204;
  if (!success || errorDocumentCode(response.body)) {
    return judgeRefusal(response, now);
  }
  if (response.bytesSent != size) {
    return AttemptOutcome::retry("the server answered after " + std::to_string(response.bytesSent) +
                                     " of " + std::to_string(size) + " bytes",
                                 failure::kServerTrouble);
  }
  const auto stored = storedDigest(response);
  if (!md5.empty() && stored && *stored != md5) {
    return otherContent(*stored, md5);
  }
  return AttemptOutcome::done();
}

}  // namespace zt_transfers
