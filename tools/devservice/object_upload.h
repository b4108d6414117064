#pragma once

#include <filesystem>
#include <string>

#include "devservice/body_reader.h"
#include "devservice/exchange.h"
#include "devservice/file_io.h"

namespace zantrio::devservice {

// An incoming file; destruction deletes it unless it was moved.
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

// Writes the request's body to the file and closes it; returns its MD5 in hexadecimal.
// Throws CHttpError (400) if the body does not have the MD5 that Content-MD5 states.
std::string receiveObject(CExchange& exchange, CBodyReader& body, CFile& file);

// The ETag header for that checksum, or the wrong one of a fault.
std::string etagHeader(const CExchange& exchange, const std::string& etag);

// The largest accepted object or part, bytes.
inline constexpr std::uint64_t kMaxObject = 1ULL << 42;

}  // namespace zantrio::devservice
