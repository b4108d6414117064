#include "upload/store_request.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "zt_transfers/global_config.h"

namespace zt_transfers {

CStoreCall::CStoreCall(CHttpLoop& loop, ILog& log, Request request, Done done)
    : loop_(loop),
      log_(log),
      request_(std::move(request)),
      done_(std::move(done)),
      place_(request_.url, request_.headers) {
  send();
}

void CStoreCall::send() {
  sent_ = 0;
  text_.clear();
  HttpRequest request;
  request.method = request_.method;
  request.url = place_.url();
  request.headers = place_.headers();
  request.bodySize = request_.body.size();
  request.proxy = request_.proxy;
  request.userAgent = CZtTransfersGlobalConfig::getInstance()->userAgent();
  request.patience = request_.patience;
  const auto answered = [this](HttpAnswer answer) { onAnswer(std::move(answer)); };
  if (request_.method == "POST") {
    exchange_ =
        std::make_unique<CHttpExchange>(loop_, request, static_cast<IHttpBody&>(*this), answered);
  } else {
    exchange_ =
        std::make_unique<CHttpExchange>(loop_, request, static_cast<IHttpSink&>(*this), answered);
  }
}

void CStoreCall::onAnswer(HttpAnswer answer) {
  if (place_.follow(answer, log_)) {
    send();
    return;
  }
  if (!text_.empty()) {
    answer.body = std::move(text_);
  }
  // A copy, as the receiver may destroy this call.
  const Done done = done_;
  done(answer);
}

IHttpBody::Read CStoreCall::read(char* to, std::size_t room, std::size_t& copied) {
  copied = std::min(room, request_.body.size() - sent_);
  std::memcpy(to, request_.body.data() + sent_, copied);
  sent_ += copied;
  return Read::kData;
}

bool CStoreCall::rewind() {
  sent_ = 0;
  return true;
}

IHttpSink::Write CStoreCall::write(const HttpAnswer& head, const char* data, std::size_t size) {
  if (head.status != 200) {
    return Write::kToAnswer;
  }
  if (text_.size() + size > kMostText) {
    return Write::kBroken;
  }
  text_.append(data, size);
  return Write::kTaken;
}

}  // namespace zt_transfers
