#pragma once

#include <filesystem>
#include <string>

#include "devservice/body_reader.h"
#include "devservice/exchange.h"
#include "devservice/file_io.h"

namespace zantrio::devservice {

// A file on its way in; what does not arrive completely leaves nothing behind.
class CIncomingFile {
 public:
  explicit CIncomingFile(std::filesystem::path path);
  ~CIncomingFile();
  CIncomingFile(const CIncomingFile&) = delete;
  CIncomingFile& operator=(const CIncomingFile&) = delete;

  const std::filesystem::path& path() const { return path_; }
  CFile& file() { return file_; }

 private:
  std::filesystem::path path_;
  CFile file_;
};

// Writes the request's body to the file and closes it; gives its MD5 in hexadecimal.
// Throws CHttpError (400) when the body does not have the MD5 that Content-MD5 states.
std::string receiveObject(CExchange& exchange, CBodyReader& body, CFile& file);

// The ETag header for what has that checksum, or the wrong one that a fault asks for.
std::string etagHeader(const CExchange& exchange, const std::string& etag);

// The largest object or part that is taken, bytes.
inline constexpr std::uint64_t kLargestObject = 1ULL << 42;

}  // namespace zantrio::devservice
