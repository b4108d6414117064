#include "download/range_fetch.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/url_parts.h"
#include "http/redirect.h"

namespace zt_transfers {
namespace {

constexpr int kMaxRedirects = 5;

// What a pause or a broken connection may cost on a slow line.
constexpr std::chrono::milliseconds kLongestInChunk{500};

std::string rangeText(const RangeRequest& rangeRequest) {
  // The header names the last byte.
  const std::string last = rangeRequest.end ? std::to_string(*rangeRequest.end - 1) : "";
  return "bytes=" + std::to_string(rangeRequest.begin) + "-" + last;
}

}  // namespace

CRangeFetch::CRangeFetch(const Dependencies& dependencies, HttpRequest request,
                         RangeRequest rangeRequest, std::uint64_t most)
    : loop_(dependencies.loop),
      log_(dependencies.log),
      writer_(dependencies.writer),
      progress_(dependencies.progress),
      listener_(dependencies.listener),
      request_(std::move(request)),
      rangeRequest_(std::move(rangeRequest)),
      max_(most),
      url_(request_.url),
      position_(rangeRequest_.begin),
      stop_(rangeRequest_.end.value_or(kNoEnd)) {
  send();
  loop_.throttle().enter(*this);
}

CRangeFetch::~CRangeFetch() {
  exchange_.reset();
  loop_.throttle().leave(*this);
  flush();
}

void CRangeFetch::send() {
  HttpRequest request = request_;
  request.url = url_;
  if (rangeRequest_.ranged) {
    request.headers.emplace_back("Range", rangeText(rangeRequest_));
    if (!rangeRequest_.validator.empty()) {
      request.headers.emplace_back("If-Range", rangeRequest_.validator);
    }
  }
  exchange_.reset();
  exchange_ =
      std::make_unique<CHttpExchange>(loop_, request, static_cast<IHttpSink&>(*this),
                                      [this](const HttpResponse& response) { judgeEnd(response); });
}

void CRangeFetch::judgeEnd(const HttpResponse& response) {
  if (response.code == CURLE_OK && isRedirect(response.status) && followRedirect(response)) {
    return;
  }
  if (!plan_ && response.status != 0) {
    begin(response);  // there was no body
  }
  listener_.onFetched(*this, response);
}

bool CRangeFetch::followRedirect(const HttpResponse& response) {
  const auto target = redirectTarget(url_, response);
  if (!target || redirects_ == kMaxRedirects) {
    return false;
  }
  ++redirects_;
  log_.information("Redirected from " + loggableUrl(url_) + " to " + loggableUrl(*target));
  url_ = *target;
  plan_.reset();
  wanted_ = false;
  send();
  return true;
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
    end_ = plan_->end.value_or(max_);
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
  const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(size, stop_ - position_));
  if (!allowed(part) || writer_.full()) {
    return Write::kLater;
  }
  credit_ -= std::min<std::uint64_t>(credit_, part);
  take(data, part);
  stopped_ = position_ == stop_ && stop_ < end_;
  return stopped_ ? Write::kBroken : Write::kTaken;
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
    // The last bytes go with what follows at once, the end of the file.
    const bool more = position_ < end_;
    if ((chunk_.size == chunk_.capacity && more) || now - chunkBegun_ > kLongestInChunk) {
      flush();
    }
  }
}

}  // namespace zt_transfers
