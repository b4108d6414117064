#include "devservice/storage_area.h"

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Timestamp.h>

#include <algorithm>
#include <vector>

#include "devservice/background_md5.h"
#include "devservice/body_reader.h"
#include "devservice/body_writer.h"
#include "devservice/http_error.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kLargestObject = 1ULL << 42;
constexpr std::uint64_t kLargestBuffer = 256ULL * 1024;
constexpr std::uint64_t kWorthAThread = 4ULL * 1024 * 1024;

// A file on its way in; what does not arrive completely leaves nothing behind.
class CIncomingFile {
 public:
  explicit CIncomingFile(std::filesystem::path path)
      : path_(std::move(path)), file_(CFile::create(path_)) {}
  ~CIncomingFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  CIncomingFile(const CIncomingFile&) = delete;
  CIncomingFile& operator=(const CIncomingFile&) = delete;

  const std::filesystem::path& path() const { return path_; }
  CFile& file() { return file_; }

 private:
  std::filesystem::path path_;
  CFile file_;
};

std::string receiveLarge(CBodyReader& body, CFile& file) {
  CBackgroundMd5 md5(kLargestBuffer);
  while (true) {
    const auto piece = body.read(md5.nextBuffer());
    if (piece.empty()) {
      break;
    }
    md5.hash(piece);
    file.write(piece);
  }
  file.close();
  return md5.finish();
}

std::string receive(CBodyReader& body, CFile& file) {
  if (body.size() >= kWorthAThread) {
    return receiveLarge(body, file);
  }
  std::vector<char> buffer(std::clamp<std::uint64_t>(body.size(), 1, kLargestBuffer));
  CMd5 md5;
  for (auto piece = body.read(buffer); !piece.empty(); piece = body.read(buffer)) {
    md5.update(piece.data(), piece.size());
    file.write(piece);
  }
  file.close();
  return md5.finish();
}

void checkContentMd5(const CExchange& exchange, const std::string& digest) {
  const std::string expected = exchange.header("Content-MD5");
  if (!expected.empty() && fromBase64(expected) != digest) {
    throw CHttpError(400, "bad_digest",
                     "The content does not have the MD5 that Content-MD5 states.");
  }
}

std::string etagOf(const CExchange& exchange, const std::string& md5) {
  const bool wrong = exchange.fault.type == Fault::Type::kEtag;
  return '"' + (wrong ? exchange.fault.etag : md5) + '"';
}

std::string httpDate(std::int64_t milliseconds) {
  return Poco::DateTimeFormatter::format(Poco::Timestamp(milliseconds * 1000),
                                         Poco::DateTimeFormat::HTTP_FORMAT);
}

// A Range counts only while the file is still the one that If-Range names.
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
  const bool reading = method == "GET" || method == "HEAD";
  if (!reading && method != "PUT" && method != "DELETE") {
    throw CHttpError(method == "POST" ? 501 : 405, "not_supported",
                     "The storage knows GET, HEAD, PUT and DELETE.");
  }
  const std::string token = exchange.header("X-Zantrio-Token");
  store_.authorize(target.bucketId, token.empty() ? exchange.query("token") : token, !reading);
  if (reading) {
    get(exchange, target);
  } else if (method == "PUT") {
    put(exchange, target);
  } else {
    store_.deleteArrived(target.bucketId, target.path);
    exchange.answerEmpty(204);
  }
}

CStorageArea::Target CStorageArea::parseTarget(const CExchange& exchange) {
  const auto& segments = exchange.segments();
  if (segments.size() < 3) {
    throw CHttpError(404, "not_found", "A file's address is /storage/<bucket>/<path>.");
  }
  Target target{segments[1], {}};
  for (std::size_t i = 2; i < segments.size(); ++i) {
    // A decoded "/" would make two names of one.
    if (segments[i].find('/') != std::string::npos) {
      throw CHttpError(400, "bad_name", "A name in the path contains a \"/\".");
    }
    target.path += (i > 2 ? "/" : "") + segments[i];
  }
  if (const std::string why = whyUnusable(target.path); !why.empty()) {
    throw CHttpError(400, "bad_name",
                     "The path \"" + printable(target.path) + "\" cannot be used: " + why + ".");
  }
  return target;
}

void CStorageArea::put(CExchange& exchange, const Target& target) {
  store_.expectFile(target.bucketId, target.path);
  CBodyReader body(exchange, kLargestObject);
  CIncomingFile incoming(store_.incomingPath());
  const std::string digest = receive(body, incoming.file());
  checkContentMd5(exchange, digest);
  const std::string md5 = toHex(digest);
  store_.accept(target.bucketId, target.path, incoming.path(), body.size(), md5);
  exchange.response.set("ETag", etagOf(exchange, md5));
  exchange.answerEmpty(200);
}

void CStorageArea::get(CExchange& exchange, const Target& target) {
  const auto [path, record] = store_.arrivedFile(target.bucketId, target.path);
  const std::string etag = etagOf(exchange, record.md5);
  auto& response = exchange.response;
  response.set("ETag", etag);
  response.set("Accept-Ranges", "bytes");
  response.set("Last-Modified", httpDate(record.modified));
  response.setContentType("application/octet-stream");

  const std::uint64_t size = record.arrivedSize;
  const RangeRequest range = rangeOf(exchange, record, etag);
  if (range.kind == RangeRequest::Kind::kUnsatisfiable) {
    response.set("Content-Range", "bytes */" + std::to_string(size));
    exchange.answerEmpty(416);
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
  sendFilePart(exchange, CFile::openForReading(path), part);
}

}  // namespace zantrio::devservice
