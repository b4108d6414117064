#include "http/text_request.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zt_transfers {

CTextRequest::CTextRequest(IHttpTransport& loop, ILog& log, Request request, Done done)
    : loop_(loop),
      log_(log),
      request_(std::move(request)),
      done_(std::move(done)),
      redirects_(request_.url, request_.headers, request_.maxRedirects) {
  send();
}

void CTextRequest::send() {
  sent_ = 0;
  text_.clear();
  HttpRequest request;
  request.method = request_.method;
  request.url = redirects_.url();
  request.headers = redirects_.headers();
  request.bodySize = request_.body.size();
  request.responseSize = kMaxText;
  request.proxy = request_.proxy;
  request.patience = request_.patience;
  const auto answered = [this](HttpResponse response) { onResponse(std::move(response)); };
  if (request_.method == "POST") {
    exchange_ = loop_.send(request, static_cast<IHttpBody&>(*this), answered);
  } else {
    exchange_ = loop_.send(request, static_cast<IHttpSink&>(*this), answered);
  }
}

void CTextRequest::onResponse(HttpResponse response) {
  loop_.retire(std::move(exchange_));
  if (redirects_.follow(response, request_.method, log_)) {
    send();
    return;
  }
  if (!text_.empty()) {
    response.body = std::move(text_);
  }
  done_(response);
}

IHttpBody::Read CTextRequest::read(char* to, std::size_t room, std::size_t& copied) {
  copied = std::min(room, request_.body.size() - sent_);
  std::memcpy(to, request_.body.data() + sent_, copied);
  sent_ += copied;
  return Read::kData;
}

bool CTextRequest::rewind() {
  sent_ = 0;
  return true;
}

IHttpSink::Write CTextRequest::write(const HttpResponse& head, const char* data, std::size_t size) {
  if (head.status != 200) {
    return Write::kToResponse;
  }
  if (text_.size() + size > kMaxText) {
    return Write::kBroken;
  }
  text_.append(data, size);
  return Write::kTaken;
}

}  // namespace zt_transfers
