#pragma once

#include <Poco/Buffer.h>

#include <cstdint>
#include <span>
#include <string>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// Reads a request's body in pieces directly from the socket (the HTTP library's stream copies it in
// steps of 4 KiB) and applies the request's fault meanwhile.
//
// Throws CHttpError for a missing length (411) or a body that is too long (413), and
// CConnectionLost if the body ends early.
class CBodyReader {
 public:
  CBodyReader(CExchange& exchange, std::uint64_t maxSize);

  std::uint64_t size() const { return size_; }
  // Returns the next piece, at most as large as the buffer; empty at the end.
  std::span<const char> read(std::span<char> buffer);
  std::string readAll();

 private:
  std::size_t allowance(std::size_t wanted);
  void throttle(std::size_t count);

  CExchange& exchange_;
  std::uint64_t size_ = 0;
  std::uint64_t done_ = 0;
  Poco::Buffer<char> prefetched_{0};  // read by the HTTP library beyond the header
  std::size_t prefetchedUsed_ = 0;
};

}  // namespace zantrio::devservice
