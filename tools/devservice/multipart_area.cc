#include "devservice/multipart_area.h"

#include <algorithm>
#include <charconv>

#include "devservice/body_reader.h"
#include "devservice/http_error.h"
#include "devservice/multipart_xml.h"
#include "devservice/object_upload.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kMaxList = 4ULL * 1024 * 1024;
constexpr unsigned kMaxPage = 1000;

void respondXml(CExchange& exchange, int status, const std::string& xml) {
  exchange.discardBody();
  auto& response = exchange.response;
  response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(status));
  response.setContentType("application/xml");
  response.sendBuffer(xml.data(), xml.size());
}

unsigned number(const CExchange& exchange, const std::string& name, unsigned fallback) {
  const std::string text = exchange.query(name);
  unsigned value = fallback;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) {
    throw CHttpError(400, "InvalidArgument", name + " must be a whole number, not negative.");
  }
  return value;
}

}  // namespace

bool CMultipartArea::isMultipart(const CExchange& exchange) {
  return exchange.hasQuery("uploads") || exchange.hasQuery("uploadId") ||
         exchange.hasQuery("partNumber");
}

void CMultipartArea::handle(CExchange& exchange, const std::string& bucketId,
                            const std::string& path) {
  try {
    route(exchange, bucketId, path);
  } catch (const CHttpError& error) {
    respondXml(exchange, error.status(), errorXml(error.code(), error.what()));
  }
}

void CMultipartArea::route(CExchange& exchange, const std::string& bucketId,
                           const std::string& path) {
  const std::string& method = exchange.method();
  if (method == "POST" && exchange.hasQuery("uploads")) {
    return initiate(exchange, bucketId, path);
  }
  const std::string uploadId = exchange.query("uploadId");
  uploads_.requireUpload(uploadId, bucketId, path);
  if (method == "PUT") {
    putPart(exchange, uploadId);
  } else if (method == "GET") {
    listParts(exchange, uploadId, path);
  } else if (method == "POST") {
    complete(exchange, bucketId, path, uploadId);
  } else if (method == "DELETE") {
    uploads_.remove(uploadId);
    exchange.respondEmpty(204);
  } else {
    throw CHttpError(405, "MethodNotAllowed", "An upload in parts knows no " + method + ".");
  }
}

void CMultipartArea::initiate(CExchange& exchange, const std::string& bucketId,
                              const std::string& path) {
  store_.requireAnnounced(bucketId, path);
  respondXml(exchange, 200, initiatedXml(bucketId, path, uploads_.create(bucketId, path)));
}

void CMultipartArea::putPart(CExchange& exchange, const std::string& uploadId) {
  const unsigned part = number(exchange, "partNumber", 0);
  if (part < 1 || part > CMultipartUploads::kMaxPartNumber) {
    throw CHttpError(400, "InvalidArgument", "partNumber must lie between 1 and 10000.");
  }
  CBodyReader body(exchange, kMaxObject);
  CIncomingFile incoming(store_.incomingPath());
  const std::string md5 = receiveObject(exchange, body, incoming.file());
  uploads_.accept(uploadId, part, incoming.path(), {body.size(), md5});
  exchange.response.set("ETag", etagHeader(exchange, md5));
  exchange.respondEmpty(200);
}

void CMultipartArea::listParts(CExchange& exchange, const std::string& uploadId,
                               const std::string& path) {
  const PartsPage page{number(exchange, "part-number-marker", 0),
                       std::min(number(exchange, "max-parts", kMaxPage), kMaxPage)};
  respondXml(exchange, 200,
             partsXml(exchange.segments()[1], path, uploadId, uploads_.parts(uploadId), page));
}

void CMultipartArea::complete(CExchange& exchange, const std::string& bucketId,
                              const std::string& path, const std::string& uploadId) {
  store_.requireAnnounced(bucketId, path);
  const auto listedParts = parseCompletion(CBodyReader(exchange, kMaxList).readAll());
  CIncomingFile target(store_.incomingPath());
  std::string etag;
  uploads_.complete(uploadId, listedParts, target.file(), [&](const AssembledFile& file) {
    store_.accept(bucketId, path, target.path(), {file.size, file.md5, file.etag});
    etag = file.etag;
  });
  respondXml(exchange, 200, completedXml(bucketId, path, etagHeader(exchange, etag)));
}

}  // namespace zantrio::devservice
