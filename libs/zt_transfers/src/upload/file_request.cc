#include "upload/file_request.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

namespace zt_transfers {

CFileRequest::CFileRequest(const UploadDependencies& dependencies, Order order, IListener& listener)
    : dependencies_(dependencies),
      order_(std::move(order)),
      listener_(listener),
      redirects_(order_.url, order_.headers) {}

void CFileRequest::enter(State next) {
  if (!mayFollow(state_, next)) {
    throw std::logic_error("an upload request's state " + std::to_string(int(state_)) +
                           " cannot become " + std::to_string(int(next)));
  }
  state_ = next;
  switch (next) {
    case State::kOpening:
      release();
      openSource();
      break;
    case State::kSending:
      dependencies_.loop.throttle().enter(*this);
      break;
    case State::kEnded:
      release();
      break;
  }
}

void CFileRequest::openSource() {
  sent_ = 0;
  source_ =
      std::make_shared<CUploadSource>(dependencies_.loop, dependencies_.pool, order_.source, *this);
  source_->open();
}

void CFileRequest::release() {
  exchange_.reset();
  dependencies_.loop.throttle().leave(*this);
  if (source_) {
    source_->close();
    source_.reset();
  }
}

void CFileRequest::onSourceOpened(const SourceVersion& version) {
  size_ = order_.source.span.value_or(ByteSpan{0, version.size}).length();
  if (listener_.onRequestOpened(*this, version)) {
    send();
  } else {
    enter(State::kEnded);
  }
}

void CFileRequest::send() {
  HttpRequest request;
  request.url = redirects_.url();
  request.headers = redirects_.headers();
  request.bodySize = size_;
  request.proxy = order_.proxy;
  request.freshConnection = freshConnection_;
  request.patience = kPatienceWithContent;
  try {
    exchange_ = dependencies_.loop.send(
        request, *this, [this](const HttpResponse& response) { onResponse(response); });
  } catch (const std::exception& error) {
    fail(AttemptOutcome::final(error.what(), failure::kBadRequest));
    return;
  }
  enter(State::kSending);
}

void CFileRequest::onSourceReady() {
  if (state_ == State::kSending) {
    exchange_->resumeBody();
  }
}

void CFileRequest::fail(const AttemptOutcome& outcome) {
  enter(State::kEnded);
  listener_.onRequestFailed(*this, outcome);
}

IHttpBody::Read CFileRequest::read(char* to, std::size_t room, std::size_t& copied) {
  const std::size_t available = std::min(room, source_->available());
  if (available == 0) {
    return sent_ == size_ ? Read::kData : Read::kLater;
  }
  CThrottle& throttle = dependencies_.loop.throttle();
  const auto granted =
      static_cast<std::size_t>(throttle.take(*this, available, dependencies_.loop.clock().now()));
  if (granted == 0) {
    return Read::kLater;
  }
  copied = source_->take(to, granted);
  sent_ += copied;
  listener_.onRequestMoved(*this);
  return Read::kData;
}

std::string_view CFileRequest::takeAll() {
  if (dependencies_.loop.throttle().limited()) {
    return {};
  }
  return source_->takeAll();
}

bool CFileRequest::rewind() {
  if (!source_->rewind()) {
    return false;
  }
  sent_ = 0;
  listener_.onRequestMoved(*this);
  return true;
}

void CFileRequest::onResponse(const HttpResponse& response) {
  dependencies_.loop.retire(std::move(exchange_));
  // A lost connection that was kept open says nothing of the file: it is sent once more at once.
  const bool again = response.staleConnection && !freshConnection_;
  freshConnection_ = freshConnection_ || again;
  if (again || redirects_.follow(response, "PUT", dependencies_.log)) {
    enter(State::kOpening);
    listener_.onRequestMoved(*this);
    return;
  }
  md5_ = source_->md5();
  enter(State::kEnded);
  if (response.code == CURLE_OK) {
    sent_ = response.bytesSent;  // a body that was sent with the head was not counted before
    listener_.onRequestMoved(*this);
  }
  listener_.onRequestAnswered(*this, response);
}

}  // namespace zt_transfers
