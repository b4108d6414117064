#include "upload/multipart_request.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "base/url_parts.h"
#include "upload/multipart_messages.h"

namespace zt_transfers {
namespace {

constexpr int kPartsOnAPage = 1000;

// Such a header would be wrong for a part.
bool isDigestOfTheWhole(std::string_view name) {
  return equalsIgnoringCase(name, "content-md5") || equalsIgnoringCase(name, "digest") ||
         equalsIgnoringCase(name, "content-digest") ||
         equalsIgnoringCase(name, "x-amz-content-sha256") ||
         startsWithIgnoringCase(name, "x-amz-checksum-");
}

HttpHeaders without(const HttpHeaders& headers, bool (*unwanted)(std::string_view)) {
  HttpHeaders kept;
  std::copy_if(headers.begin(), headers.end(), std::back_inserter(kept),
               [unwanted](const auto& header) { return !unwanted(header.first); });
  return kept;
}

std::string idQuery(const UploadSession& session) {
  return "uploadId=" + percentEncoded(session.uploadId);
}

CTextRequest::Request request(const char* method, std::string url, HttpHeaders headers,
                              const std::string& proxy) {
  return {.method = method, .url = std::move(url), .headers = std::move(headers), .proxy = proxy};
}

}  // namespace

CTextRequest::Request initiationRequest(const UploadSession& session, const std::string& proxy) {
  return request("POST", withQuery(session.url, "uploads"),
                 without(session.headers, isDigestOfTheWhole), proxy);
}

CTextRequest::Request listRequest(const UploadSession& session, std::uint32_t after,
                                  const std::string& proxy) {
  std::string query = idQuery(session) + "&max-parts=" + std::to_string(kPartsOnAPage);
  if (after != 0) {
    query += "&part-number-marker=" + std::to_string(after);
  }
  return request("GET", withQuery(session.url, query), partHeaders(session), proxy);
}

CTextRequest::Request completionRequest(const UploadSession& session, const std::string& proxy) {
  CTextRequest::Request completion =
      request("POST", withQuery(session.url, idQuery(session)), partHeaders(session), proxy);
  completion.headers.emplace_back("Content-Type", "application/xml");
  completion.body = completionOf(session.parts);
  completion.patience = kPatienceWithContent;
  return completion;
}

CTextRequest::Request abortRequest(const UploadSession& session, const std::string& proxy) {
  return request("DELETE", withQuery(session.url, idQuery(session)), partHeaders(session), proxy);
}

CTextRequest::Request lookUpRequest(const UploadSession& session, const std::string& proxy) {
  return request("HEAD", session.url, partHeaders(session), proxy);
}

std::string partUrl(const UploadSession& session, std::uint32_t number) {
  return withQuery(session.url, "partNumber=" + std::to_string(number) + "&" + idQuery(session));
}

HttpHeaders partHeaders(const UploadSession& session) {
  return without(session.headers, [](std::string_view name) {
    return startsWithIgnoringCase(name, "content-") || isDigestOfTheWhole(name);
  });
}

}  // namespace zt_transfers
