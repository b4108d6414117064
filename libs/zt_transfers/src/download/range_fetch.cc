#include "download/range_fetch.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zt_transfers {
namespace {

// Limits what a pause or a broken connection can lose on a slow line.
constexpr std::chrono::milliseconds kMaxTimeInChunk{500};

std::string rangeText(const RangeRequest& rangeRequest) {
  // The header names the last byte.
  const std::string last = rangeRequest.end ? std::to_string(*rangeRequest.end - 1) : "";
  return "bytes=" + std::to_string(rangeRequest.begin) + "-" + last;
}

}  // namespace

CRangeFetch::CRangeFetch(const Dependencies& dependencies, HttpRequest request,
                         RangeRequest rangeRequest, std::uint64_t maxSize)
    : loop_(dependencies.loop),
      log_(dependencies.log),
      writer_(dependencies.writer),
      progress_(dependencies.progress),
      listener_(dependencies.listener),
      request_(std::move(request)),
      rangeRequest_(std::move(rangeRequest)),
      maxSize_(maxSize),
      redirects_(request_.url, request_.headers),
      position_(rangeRequest_.begin),
      stop_(rangeRequest_.end.value_or(kNoEnd)) {
  send();
  loop_.throttle().enter(*this);
}

void CRangeFetch::end() {
  exchange_.reset();
  loop_.throttle().leave(*this);
  flush();
}

void CRangeFetch::send() {
  HttpRequest request = request_;
  request.url = redirects_.url();
  request.headers = redirects_.headers();
  if (rangeRequest_.ranged) {
    request.headers.emplace_back("Range", rangeText(rangeRequest_));
    if (!rangeRequest_.validator.empty()) {
      request.headers.emplace_back("If-Range", rangeRequest_.validator);
    }
  }
  exchange_ = loop_.send(request, static_cast<IHttpSink&>(*this),
                         [this](const HttpResponse& response) { judgeEnd(response); });
}

void CRangeFetch::judgeEnd(const HttpResponse& response) {
  loop_.retire(std::move(exchange_));
  if (redirects_.follow(response, "GET", log_)) {
    plan_.reset();
    wanted_ = false;
    send();
    return;
  }
  if (!plan_ && response.status != 0) {
    begin(response);  // the response has no body
  }
  listener_.onFetched(*this, response);
}

void CRangeFetch::resume() {
  if (exchange_) {
    exchange_->resumeBody();
  }
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

bool CRangeFetch::begin(const HttpResponse& head) {
  plan_ = planResponse(head, rangeRequest_);
  wanted_ = listener_.onHead(*this, *plan_) && plan_->kind == FetchPlan::Kind::kBody;
  if (wanted_) {
    position_ = plan_->begin;
    end_ = plan_->end.value_or(maxSize_);
    stop_ = plan_->partial ? stop_ : kNoEnd;
  }
  return wanted_;
}

IHttpSink::Write CRangeFetch::write(const HttpResponse& head, const char* data, std::size_t size) {
  if (!plan_) {
    begin(head);
  }
  if (!wanted_) {
    return Write::kToResponse;
  }
  if (size > end_ - position_) {
    tooLong_ = true;
    return Write::kBroken;
  }
  const auto wantedSize =
      static_cast<std::size_t>(std::min<std::uint64_t>(size, stop_ - position_));
  if (!allowed(wantedSize) || writer_.full()) {
    return Write::kLater;
  }
  credit_ -= std::min<std::uint64_t>(credit_, wantedSize);
  take(data, wantedSize);
  stopped_ = position_ == stop_ && stop_ < end_;
  return stopped_ ? Write::kBroken : Write::kTaken;
}

// Saves up the throttle's grants until they are enough, because a block of received bytes can only
// be taken whole.
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
    const std::size_t count = std::min(size, chunk_.capacity - chunk_.size);
    std::memcpy(chunk_.data.get() + chunk_.size, data, count);
    chunk_.size += count;
    position_ += count;
    progress_.bytes += count;
    data += count;
    size -= count;
    // The last bytes are passed on together with the end of the file.
    const bool more = position_ < end_;
    if ((chunk_.size == chunk_.capacity && more) || now - chunkBegun_ > kMaxTimeInChunk) {
      flush();
    }
  }
}

}  // namespace zt_transfers
