#include "download/range_fetch.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "http/redirect.h"
#include "base/url_parts.h"

namespace zt_transfers {
namespace {

constexpr int kMostRedirects = 5;

// What a pause or a broken connection may cost on a slow line.
constexpr std::chrono::milliseconds kLongestInChunk{500};

std::string rangeText(const FetchAsk& ask) {
  // The header names the last byte.
  const std::string last = ask.end ? std::to_string(*ask.end - 1) : "";
  return "bytes=" + std::to_string(ask.begin) + "-" + last;
}

}  // namespace

CRangeFetch::CRangeFetch(const Surroundings& surroundings, HttpRequest request, FetchAsk ask,
                         std::uint64_t most)
    : loop_(surroundings.loop),
      log_(surroundings.log),
      writer_(surroundings.writer),
      progress_(surroundings.progress),
      listener_(surroundings.listener),
      request_(std::move(request)),
      ask_(std::move(ask)),
      most_(most),
      url_(request_.url),
      position_(ask_.begin),
      stop_(ask_.end.value_or(kNoEnd)) {
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
  if (ask_.ranged) {
    request.headers.emplace_back("Range", rangeText(ask_));
    if (!ask_.validator.empty()) {
      request.headers.emplace_back("If-Range", ask_.validator);
    }
  }
  exchange_.reset();
  exchange_ =
      std::make_unique<CHttpExchange>(loop_, request, static_cast<IHttpSink&>(*this),
                                      [this](const HttpAnswer& answer) { judgeEnd(answer); });
}

void CRangeFetch::judgeEnd(const HttpAnswer& answer) {
  if (answer.code == CURLE_OK && isRedirect(answer.status) && followRedirect(answer)) {
    return;
  }
  if (!plan_ && answer.status != 0) {
    begin(answer);  // there was no body
  }
  listener_.onFetched(*this, answer);
}

bool CRangeFetch::followRedirect(const HttpAnswer& answer) {
  const auto target = redirectTarget(url_, answer);
  if (!target || redirects_ == kMostRedirects) {
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

bool CRangeFetch::begin(const HttpAnswer& head) {
  plan_ = planAnswer(head, ask_);
  wanted_ = listener_.onHead(*this, *plan_) && plan_->kind == FetchPlan::Kind::kBody;
  if (wanted_) {
    position_ = plan_->begin;
    end_ = plan_->end.value_or(most_);
    stop_ = plan_->partial ? stop_ : kNoEnd;
  }
  return wanted_;
}

IHttpSink::Write CRangeFetch::write(const HttpAnswer& head, const char* data, std::size_t size) {
  if (!plan_) {
    begin(head);
  }
  if (!wanted_) {
    return Write::kToAnswer;
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
