#include "download/range_fetch.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zt_transfers {
namespace {

// What a pause or a broken connection may cost on a slow line.
constexpr std::chrono::milliseconds kLongestInChunk{500};

}  // namespace

CRangeFetch::CRangeFetch(CHttpLoop& loop, const HttpRequest& request, CPartialWriter& writer,
                         JobProgress& progress, IListener& listener)
    : loop_(loop), writer_(writer), progress_(progress), listener_(listener) {
  exchange_ = std::make_unique<CHttpExchange>(
      loop, request, static_cast<IHttpSink&>(*this),
      [this](const HttpAnswer& answer) { listener_.onFetched(answer); });
  loop_.throttle().enter(*this);
}

CRangeFetch::~CRangeFetch() {
  exchange_.reset();
  loop_.throttle().leave(*this);
  flush();
}

void CRangeFetch::flush() {
  if (chunk_.size != 0) {
    writer_.write(std::exchange(chunk_, {}));
  }
}

void CRangeFetch::add() {
  if (chunk_.size != 0) {
    writer_.add(std::exchange(chunk_, {}));
  }
}

IHttpSink::Write CRangeFetch::write(const HttpAnswer& head, const char* data, std::size_t size) {
  if (!begun_) {
    const auto span = listener_.onHead(head);
    if (!span) {
      return Write::kToAnswer;
    }
    begun_ = true;
    position_ = span->begin;
    end_ = span->end;
  }
  if (size > end_ - position_) {
    tooLong_ = true;
    return Write::kBroken;
  }
  if (!allowed(size) || writer_.full()) {
    return Write::kLater;
  }
  credit_ -= std::min<std::uint64_t>(credit_, size);
  take(data, size);
  return Write::kTaken;
}

// Saves up what the throttle grants until it is enough: bytes come in pieces that cannot be
// taken in part.
bool CRangeFetch::allowed(std::size_t size) {
  while (credit_ < size) {
    const std::uint64_t granted = loop_.throttle().take(*this, size - credit_, loop_.clock().now());
    if (granted == 0) {
      return false;
    }
    credit_ += granted;
  }
  return true;
}

void CRangeFetch::take(const char* data, std::size_t size) {
  const TimePoint now = loop_.clock().now();
  while (size != 0) {
    if (!chunk_.data) {
      chunk_ = writer_.chunk(std::max<std::uint64_t>(end_ - position_, size));
      chunk_.offset = position_;
      chunkBegun_ = now;
    }
    const std::size_t part = std::min(size, chunk_.capacity - chunk_.size);
    std::memcpy(chunk_.data.get() + chunk_.size, data, part);
    chunk_.size += part;
    position_ += part;
    progress_.bytes += part;
    data += part;
    size -= part;
    if (chunk_.size == chunk_.capacity || now - chunkBegun_ > kLongestInChunk) {
      flush();
    }
  }
}

}  // namespace zt_transfers
