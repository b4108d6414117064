#include "devservice/object_upload.h"

#include <algorithm>
#include <vector>

#include "devservice/background_md5.h"
#include "devservice/http_error.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kMaxBuffer = 256ULL * 1024;
constexpr std::uint64_t kWorthAThread = 4ULL * 1024 * 1024;

std::string receiveLarge(CBodyReader& body, CFile& file) {
  CBackgroundMd5 md5(kMaxBuffer);
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
  std::vector<char> buffer(std::clamp<std::uint64_t>(body.size(), 1, kMaxBuffer));
  CMd5 md5;
  for (auto piece = body.read(buffer); !piece.empty(); piece = body.read(buffer)) {
    md5.update(piece.data(), piece.size());
    file.write(piece);
  }
  file.close();
  return md5.finish();
}

}  // namespace

CIncomingFile::CIncomingFile(std::filesystem::path path)
    : path_(std::move(path)), file_(CFile::create(path_)) {}

CIncomingFile::~CIncomingFile() {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

std::string receiveObject(CExchange& exchange, CBodyReader& body, CFile& file) {
  const std::string digest = receive(body, file);
  const std::string expected = exchange.header("Content-MD5");
  if (!expected.empty() && fromBase64(expected) != digest) {
    throw CHttpError(400, "bad_digest",
                     "The content does not have the MD5 that Content-MD5 states.");
  }
  return toHex(digest);
}

std::string etagHeader(const CExchange& exchange, const std::string& etag) {
  const bool wrong = exchange.fault.type == Fault::Type::kEtag;
  return '"' + (wrong ? exchange.fault.etag : etag) + '"';
}

}  // namespace zantrio::devservice
