#include "devservice/storage_area.h"

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Timestamp.h>

#include "devservice/body_reader.h"
#include "devservice/body_writer.h"
#include "devservice/http_error.h"
#include "devservice/object_upload.h"

namespace zantrio::devservice {

namespace {

std::string httpDate(std::int64_t milliseconds) {
  return Poco::DateTimeFormatter::format(Poco::Timestamp(milliseconds * 1000),
                                         Poco::DateTimeFormat::HTTP_FORMAT);
}

// A Range applies only if the file is the version that If-Range names.
RangeRequest rangeOf(const CExchange& exchange, const MessageFile& file, const std::string& etag) {
  const std::string condition = exchange.header("If-Range");
  if (!condition.empty() && condition != etag && condition != httpDate(file.modified)) {
    return {};
  }
  return parseRange(exchange.header("Range"), file.arrivedSize);
}

}  // namespace

void CStorageArea::handle(CExchange& exchange) {
  const Target target = parseTarget(exchange);
  const std::string& method = exchange.method();
  const bool multipart = multipart_ != nullptr && CMultipartArea::isMultipart(exchange);
  const bool reading = method == "GET" || method == "HEAD";
  if (!multipart && !reading && method != "PUT" && method != "DELETE") {
    throw CHttpError(method == "POST" ? 501 : 405, "not_supported",
                     "The storage knows GET, HEAD, PUT and DELETE.");
  }
  authorize(exchange, target, !reading);
  if (multipart) {
    multipart_->handle(exchange, target.bucketId, target.path);
  } else if (reading) {
    get(exchange, target);
  } else if (method == "PUT") {
    put(exchange, target);
  } else {
    store_.deleteArrived(target.bucketId, target.path);
    exchange.respondEmpty(204);
  }
}

// By the message's token, or for reading by a signature in the URL.
void CStorageArea::authorize(const CExchange& exchange, const Target& target, bool forWriting) {
  if (!forWriting && exchange.hasQuery("signature")) {
    return signer_.verify(target.bucketId, target.path, exchange.query("expires"),
                          exchange.query("signature"));
  }
  const std::string token = exchange.header("X-Zantrio-Token");
  store_.authorize(target.bucketId, token.empty() ? exchange.query("token") : token, forWriting);
}

CStorageArea::Target CStorageArea::parseTarget(const CExchange& exchange) {
  const auto& segments = exchange.segments();
  if (segments.size() < 3) {
    throw CHttpError(404, "not_found", "A file's address is /storage/<bucket>/<path>.");
  }
  Target target{segments[1], {}};
  for (std::size_t i = 2; i < segments.size(); ++i) {
    // A decoded "/" would split one name into two.
    if (segments[i].find('/') != std::string::npos) {
      throw CHttpError(400, "bad_name", "A name in the path contains a \"/\".");
    }
    target.path += (i > 2 ? "/" : "") + segments[i];
  }
  if (const std::string why = pathProblem(target.path); !why.empty()) {
    throw CHttpError(400, "bad_name",
                     "The path \"" + printable(target.path) + "\" cannot be used: " + why + ".");
  }
  return target;
}

void CStorageArea::put(CExchange& exchange, const Target& target) {
  store_.requireAnnounced(target.bucketId, target.path);
  CBodyReader body(exchange, kMaxObject);
  CIncomingFile incoming(store_.incomingPath());
  const std::string md5 = receiveObject(exchange, body, incoming.file());
  store_.accept(target.bucketId, target.path, incoming.path(), {body.size(), md5, md5});
  exchange.response.set("ETag", etagHeader(exchange, md5));
  exchange.respondEmpty(200);
}

void CStorageArea::get(CExchange& exchange, const Target& target) {
  const auto [record, content] = received_.open(target.bucketId, target.path);
  const std::string etag = etagHeader(exchange, record.etag);
  auto& response = exchange.response;
  response.set("ETag", etag);
  response.set("Accept-Ranges", "bytes");
  response.set("Last-Modified", httpDate(record.modified));
  response.setContentType("application/octet-stream");

  const std::uint64_t size = record.arrivedSize;
  const RangeRequest range = rangeOf(exchange, record, etag);
  if (range.kind == RangeRequest::Kind::kUnsatisfiable) {
    response.set("Content-Range", "bytes */" + std::to_string(size));
    exchange.respondEmpty(416);
    return;
  }
  const bool whole = range.kind == RangeRequest::Kind::kWhole;
  const ByteRange part = whole ? ByteRange{0, size - 1} : range.part;
  const std::uint64_t length = size == 0 ? 0 : part.last - part.first + 1;
  if (!whole) {
    response.setStatusAndReason(Poco::Net::HTTPResponse::HTTP_PARTIAL_CONTENT);
    response.set("Content-Range", "bytes " + std::to_string(part.first) + "-" +
                                      std::to_string(part.last) + "/" + std::to_string(size));
  }
  exchange.discardBody();
  response.setContentLength64(static_cast<Poco::Int64>(length));
  if (exchange.method() == "HEAD" || length == 0) {
    response.send();
    return;
  }
  sendPart(exchange, *content, part);
}

}  // namespace zantrio::devservice
