#include "upload/file_request.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "zt_transfers/global_config.h"

namespace zt_transfers {

CFileRequest::CFileRequest(const UploadTools& tools, Order order, IListener& listener)
    : tools_(tools),
      order_(std::move(order)),
      listener_(listener),
      place_(order_.url, order_.headers) {}

CFileRequest::~CFileRequest() {
  close();
}

void CFileRequest::begin() {
  sent_ = 0;
  source_ = std::make_shared<CUploadSource>(tools_.loop, tools_.pool, order_.source, *this);
  source_->open();
}

void CFileRequest::close() {
  if (exchange_) {
    exchange_.reset();
    tools_.loop.throttle().leave(*this);
  }
  if (source_) {
    source_->close();
    source_.reset();
  }
}

void CFileRequest::onSourceOpened(const SourceVersion& version) {
  size_ = order_.source.span.value_or(ByteSpan{0, version.size}).length();
  if (!listener_.onRequestOpened(*this, version)) {
    return;
  }
  HttpRequest request;
  request.url = place_.url();
  request.headers = place_.headers();
  request.bodySize = size_;
  request.proxy = order_.proxy;
  request.userAgent = CZtTransfersGlobalConfig::getInstance()->userAgent();
  try {
    exchange_ = std::make_unique<CHttpExchange>(
        tools_.loop, request, *this, [this](const HttpAnswer& answer) { onAnswer(answer); });
  } catch (const std::exception& error) {
    listener_.onRequestFailed(*this, {failure::kBadRequest, error.what()});
    return;
  }
  tools_.loop.throttle().enter(*this);
}

void CFileRequest::onSourceReady() {
  if (exchange_) {
    exchange_->resumeBody();
  }
}

void CFileRequest::onSourceFailed(const Trouble& trouble) {
  listener_.onRequestFailed(*this, trouble);
}

IHttpBody::Read CFileRequest::read(char* to, std::size_t room, std::size_t& copied) {
  const std::size_t available = std::min(room, source_->available());
  if (available == 0) {
    return sent_ == size_ ? Read::kData : Read::kLater;
  }
  CThrottle& throttle = tools_.loop.throttle();
  const auto granted =
      static_cast<std::size_t>(throttle.take(*this, available, tools_.loop.clock().now()));
  if (granted == 0) {
    return Read::kLater;
  }
  copied = source_->take(to, granted);
  sent_ += copied;
  listener_.onRequestMoved(*this);
  return Read::kData;
}

std::string_view CFileRequest::takeAll() {
  if (tools_.loop.throttle().limited()) {
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

void CFileRequest::onAnswer(const HttpAnswer& answer) {
  if (!place_.follow(answer, tools_.log)) {
    if (answer.code == CURLE_OK) {
      sent_ = answer.bytesSent;  // what was taken as a whole was not counted before
      listener_.onRequestMoved(*this);
    }
    listener_.onRequestAnswered(*this, answer);
    return;
  }
  close();
  begin();
  listener_.onRequestMoved(*this);
}

}  // namespace zt_transfers
