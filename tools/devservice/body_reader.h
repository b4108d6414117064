#pragma once

#include <Poco/Buffer.h>

#include <cstdint>
#include <span>
#include <string>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// Reads a request's body piece by piece, straight from the socket (the HTTP library's own stream
// copies it in steps of 4 KiB), and lets the request's fault happen on the way.
//
// Throws CHttpError for a missing length (411) or too long a body (413), and CConnectionLost when
// the body ends early.
class CBodyReader {
 public:
  CBodyReader(CExchange& exchange, std::uint64_t largest);

  std::uint64_t size() const { return size_; }
  // The next piece, at most as large as the buffer; empty at the end.
  std::span<const char> read(std::span<char> buffer);
  std::string readAll();

 private:
  std::size_t allowed(std::size_t wanted);
  void pace(std::size_t count);

  CExchange& exchange_;
  std::uint64_t size_ = 0;
  std::uint64_t done_ = 0;
  Poco::Buffer<char> ahead_{0};  // what the HTTP library had read beyond the header
  std::size_t aheadUsed_ = 0;
};

}  // namespace zantrio::devservice
