#include "devservice/body_reader.h"

#include <Poco/Net/HTTPServerSession.h>

#include <algorithm>
#include <cstring>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

constexpr std::uint64_t kStepsPerSecond = 20;
constexpr std::uint64_t kForever = 24ULL * 3600 * 1000;

}  // namespace

CBodyReader::CBodyReader(CExchange& exchange, std::uint64_t maxSize) : exchange_(exchange) {
  auto& request = exchange.request;
  if (request.getChunkedTransferEncoding()) {
    throw CHttpError(411, "length_required", "The request needs a Content-Length.");
  }
  if (!request.hasContentLength()) {
    if (exchange.method() == "PUT") {
      throw CHttpError(411, "length_required", "The request needs a Content-Length.");
    }
    exchange.bodyWasRead();
    return;
  }
  const auto length = request.getContentLength64();
  if (length < 0 || static_cast<std::uint64_t>(length) > maxSize) {
    throw CHttpError(413, "too_large",
                     "The body may have at most " + std::to_string(maxSize) + " bytes.");
  }
  size_ = static_cast<std::uint64_t>(length);
  exchange.bodyWasRead();
  request.session().drainBuffer(prefetched_);
  if (prefetched_.size() > size_) {
    // A pipelined request, which its client must be ready to send again.
    exchange.response.setKeepAlive(false);
  }
}

std::span<const char> CBodyReader::read(std::span<char> buffer) {
  const std::size_t wanted =
      allowance(static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), size_ - done_)));
  if (wanted == 0) {
    return {};
  }
  std::size_t count = 0;
  if (prefetchedUsed_ < prefetched_.size()) {
    count = std::min(wanted, prefetched_.size() - prefetchedUsed_);
    std::memcpy(buffer.data(), prefetched_.begin() + prefetchedUsed_, count);
    prefetchedUsed_ += count;
  } else {
    const int received =
        exchange_.request.session().socket().receiveBytes(buffer.data(), static_cast<int>(wanted));
    if (received <= 0) {
      throw CConnectionLost("the body ended early");
    }
    count = static_cast<std::size_t>(received);
  }
  done_ += count;
  throttle(count);
  return buffer.first(count);
}

std::string CBodyReader::readAll() {
  std::string text(size_, '\0');
  std::size_t at = 0;
  while (true) {
    const auto piece = read(std::span(text).subspan(at));
    if (piece.empty()) {
      return text;
    }
    at += piece.size();
  }
}

// The number of wanted bytes that may be read before the fault; applies the fault when it is due.
std::size_t CBodyReader::allowance(std::size_t wanted) {
  Fault& fault = exchange_.fault;
  if (fault.type == Fault::Type::kRate) {
    const std::uint64_t step = std::max<std::uint64_t>(1, fault.bytesPerSecond / kStepsPerSecond);
    return static_cast<std::size_t>(std::min<std::uint64_t>(wanted, step));
  }
  if (fault.type != Fault::Type::kReset && fault.type != Fault::Type::kStall) {
    return wanted;
  }
  const std::uint64_t left = fault.afterBytes > done_ ? fault.afterBytes - done_ : 0;
  if (left > 0) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left));
  }
  if (fault.type == Fault::Type::kReset) {
    exchange_.reset();
  }
  fault.type = Fault::Type::kNone;
  exchange_.wait(fault.milliseconds > 0 ? fault.milliseconds : kForever);
  return wanted;
}

void CBodyReader::throttle(std::size_t count) {
  const Fault& fault = exchange_.fault;
  if (fault.type == Fault::Type::kRate) {
    exchange_.wait(count * 1000 / fault.bytesPerSecond);
  }
}

}  // namespace zantrio::devservice
