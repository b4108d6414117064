#include "upload/upload_attempt.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "text/file_url.h"
#include "text/url_parts.h"
#include "upload/upload_verdict.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers {
namespace {

constexpr int kMostRedirects = 5;

}  // namespace

CUploadAttempt::CUploadAttempt(CHttpLoop& loop, CWorkerPool& pool, ILog& log, StartOrder order,
                               Done done)
    : loop_(loop),
      pool_(pool),
      log_(log),
      order_(std::move(order)),
      done_(std::move(done)),
      url_(order_.spec.url),
      headers_(order_.spec.headers) {}

CUploadAttempt::~CUploadAttempt() {
  closeRequest();
}

void CUploadAttempt::begin() {
  const auto path = pathOfFileUrl(order_.spec.place);
  if (!path) {
    finish(AttemptOutcome::final("its source is no file: URL of this machine"));
    return;
  }
  if (originOf(url_).empty()) {
    finish(AttemptOutcome::final("it has no http or https URL to be sent to"));
    return;
  }
  path_ = *path;
  openSource();
}

void CUploadAttempt::openSource() {
  sent_ = 0;
  order_.progress->bytes = 0;
  source_ = std::make_shared<CUploadSource>(loop_, pool_, path_, order_.verify, *this);
  source_->open();
}

void CUploadAttempt::closeRequest() {
  if (exchange_) {
    exchange_.reset();
    loop_.throttle().leave(*this);
  }
  if (source_) {
    source_->close();
    source_.reset();
  }
}

void CUploadAttempt::onSourceOpened(std::uint64_t size) {
  size_ = size;
  order_.progress->size = size;
  HttpRequest request;
  request.url = url_;
  request.headers = headers_;
  request.bodySize = size;
  request.proxy = order_.proxy;
  request.userAgent = CZtTransfersGlobalConfig::getInstance()->userAgent();
  try {
    exchange_ = std::make_unique<CHttpExchange>(
        loop_, request, *this, [this](const HttpAnswer& answer) { onAnswer(answer); });
  } catch (const std::exception& error) {
    finish(AttemptOutcome::final(error.what()));
    return;
  }
  loop_.throttle().enter(*this);
}

void CUploadAttempt::onSourceReady() {
  if (exchange_) {
    exchange_->resumeBody();
  }
}

void CUploadAttempt::onThrottleOpen() {
  exchange_->resumeBody();
}

void CUploadAttempt::onSourceFailed(const std::string& reason) {
  finish(AttemptOutcome::final(reason));
}

IHttpBody::Read CUploadAttempt::read(char* to, std::size_t room, std::size_t& copied) {
  const std::size_t available = std::min(room, source_->available());
  if (available == 0) {
    return sent_ == size_ ? Read::kData : Read::kLater;
  }
  const auto granted =
      static_cast<std::size_t>(loop_.throttle().take(*this, available, loop_.clock().now()));
  if (granted == 0) {
    return Read::kLater;
  }
  copied = source_->take(to, granted);
  sent_ += copied;
  order_.progress->bytes = sent_;
  return Read::kData;
}

bool CUploadAttempt::rewind() {
  if (!source_->rewind()) {
    return false;
  }
  sent_ = 0;
  order_.progress->bytes = 0;
  return true;
}

void CUploadAttempt::onAnswer(const HttpAnswer& answer) {
  if (answer.code == CURLE_OK && isRedirect(answer.status) && followRedirect(answer)) {
    return;
  }
  finish(judgeUpload(answer, size_, source_->md5(), loop_.clock().secondsSince1970()));
}

bool CUploadAttempt::followRedirect(const HttpAnswer& answer) {
  const auto target = redirectTarget(url_, answer);
  if (!target || redirects_ == kMostRedirects) {
    return false;
  }
  ++redirects_;
  log_.information("Redirected from " + loggableUrl(url_) + " to " + loggableUrl(*target));
  headers_ = headersAfterRedirect(headers_, url_, *target);
  url_ = *target;
  closeRequest();
  openSource();
  return true;
}

void CUploadAttempt::finish(const AttemptOutcome& outcome) {
  closeRequest();
  // A copy, as the receiver may destroy this attempt.
  const Done done = done_;
  done(outcome);
}

}  // namespace zt_transfers
