#include "download/download_attempt.h"

#include <exception>
#include <limits>
#include <utility>

#include "http/answer_verdict.h"
#include "http/redirect.h"
#include "text/ascii.h"
#include "text/url_parts.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers {
namespace {

constexpr int kMostRedirects = 5;
constexpr std::uint64_t kNoEnd = std::numeric_limits<std::int64_t>::max();

// So much more than the attempt before makes up for the retry that it cost.
constexpr std::uint64_t kWorthARetry = 1024 * 1024;

std::string text(std::uint64_t number) {
  return std::to_string(number);
}

CPartialFile::Plan planOf(const StartOrder& order) {
  CPartialFile::Plan plan;
  plan.folder = order.folder;
  plan.target = parseTargetPath(order.spec.place);
  plan.key = std::to_string(order.file.groupId) + '\0' + order.spec.fileId;
  plan.size = order.spec.size;
  plan.modified = order.spec.modified;
  plan.md5 = loweredAscii(order.spec.contentMd5);
  return plan;
}

}  // namespace

CDownloadAttempt::CDownloadAttempt(CHttpLoop& loop, CWorkerPool& pool, ILog& log, StartOrder order,
                                   IListener& listener)
    : loop_(loop),
      pool_(pool),
      log_(log),
      order_(std::move(order)),
      listener_(listener),
      url_(order_.spec.url) {}

CDownloadAttempt::~CDownloadAttempt() {
  fetch_.reset();
  if (writer_) {
    writer_->close();
  }
}

void CDownloadAttempt::begin() {
  if (originOf(url_).empty()) {
    report(AttemptOutcome::final("it has no http or https URL to be fetched from"));
    return;
  }
  try {
    writer_ = std::make_shared<CPartialWriter>(
        loop_, pool_, std::make_shared<CPartialFile>(planOf(order_)), order_.progress, *this);
  } catch (const std::exception& error) {
    report(AttemptOutcome::final(error.what()));
    return;
  }
  if (order_.resume.begun()) {
    writer_->reopen(order_.resume.download());
  } else {
    fetch();
  }
}

void CDownloadAttempt::discard() {
  if (writer_) {
    writer_->file()->discard();
  }
}

void CDownloadAttempt::onReopened(CPartialFile::Found found, const DownloadResume& resume) {
  if (found == CPartialFile::Found::kLanded) {
    report(AttemptOutcome::done());
    return;
  }
  const bool hasBeginning = found == CPartialFile::Found::kPartial && !resume.written.empty() &&
                            resume.written.front().begin == 0;
  if (hasBeginning) {
    there_ = resume.written.front().end;
    validator_ = resume.validator;
    if (resume.size != DownloadResume::kUnknown) {
      size_ = resume.size;
    }
  }
  fetch();
}

// Asks for what is missing.
void CDownloadAttempt::fetch() {
  if (there_ != 0 && size_ == there_) {
    arrive(there_);
    return;
  }
  // Without a name for the version nobody can tell whether the rest would be of the same.
  ask_ = {};
  if (there_ != 0 && !validator_.empty()) {
    ask_.begin = there_;
    ask_.ranged = true;
    ask_.validator = validator_;
    ask_.size = size_;
  }
  send();
}

void CDownloadAttempt::send() {
  plan_.reset();
  fetch_.reset();
  try {
    fetch_ = std::make_unique<CRangeFetch>(loop_, request(), *writer_, *order_.progress, *this);
  } catch (const std::exception& error) {
    finish(AttemptOutcome::final(error.what()));
  }
}

HttpRequest CDownloadAttempt::request() const {
  HttpRequest request;
  request.method = "GET";
  request.url = url_;
  // Bytes as they are stored, so that they can be counted.
  request.headers.emplace_back("Accept-Encoding", "identity");
  if (ask_.ranged) {
    request.headers.emplace_back("Range", "bytes=" + text(ask_.begin) + "-");
    request.headers.emplace_back("If-Range", ask_.validator);
  }
  request.proxy = order_.proxy;
  request.userAgent = CZtTransfersGlobalConfig::getInstance()->userAgent();
  return request;
}

std::optional<ByteSpan> CDownloadAttempt::onHead(const HttpAnswer& head) {
  plan_ = planAnswer(head, ask_);
  if (plan_->kind != FetchPlan::Kind::kBody) {
    return std::nullopt;
  }
  const std::uint64_t expected = order_.spec.size;
  if (expected != 0 && plan_->size && *plan_->size != expected) {
    refusal_ = AttemptOutcome::retry("the server has " + text(*plan_->size) + " bytes instead of " +
                                     text(expected));
    return std::nullopt;
  }
  return beginContent();
}

std::optional<ByteSpan> CDownloadAttempt::beginContent() {
  if (plan_->begin == 0) {
    if (there_ != 0) {
      log_.information("Starting over with " + loggableUrl(url_) +
                       ": the server sends all of it, or another version");
    }
    validator_ = plan_->validator;
    size_ = plan_->size;
    writer_->restart(validator_, size_.value_or(DownloadResume::kUnknown));
  }
  if (plan_->size) {
    size_ = plan_->size;
  }
  there_ = plan_->begin;
  order_.progress->bytes = there_;
  if (size_) {
    order_.progress->size = *size_;
  }
  const std::uint64_t most = order_.spec.size != 0 ? order_.spec.size : kNoEnd;
  return ByteSpan{plan_->begin, plan_->end.value_or(most)};
}

void CDownloadAttempt::onFetched(const HttpAnswer& answer) {
  if (answer.code == CURLE_OK && isRedirect(answer.status) && followRedirect(answer)) {
    return;
  }
  if (!plan_ && answer.status != 0) {
    onHead(answer);  // there was no body
  }
  if (refusal_) {
    finish(*refusal_);
    return;
  }
  switch (plan_ ? plan_->kind : FetchPlan::Kind::kOther) {
    case FetchPlan::Kind::kBody:
      judgeBody(answer);
      return;
    case FetchPlan::Kind::kComplete:
      judgeComplete();
      return;
    case FetchPlan::Kind::kStartOver:
      startOver();
      return;
    case FetchPlan::Kind::kOther:
      finish(answer.code != CURLE_OK ? judgeTransport(answer)
                                     : judgeRefusal(answer, loop_.clock().secondsSince1970()));
      return;
  }
}

bool CDownloadAttempt::followRedirect(const HttpAnswer& answer) {
  const auto target = redirectTarget(url_, answer);
  if (!target || redirects_ == kMostRedirects) {
    return false;
  }
  ++redirects_;
  log_.information("Redirected from " + loggableUrl(url_) + " to " + loggableUrl(*target));
  url_ = *target;
  send();
  return true;
}

// Asks for the whole, without a condition that the server could get wrong again.
void CDownloadAttempt::startOver() {
  const std::string reason = plan_->reason;
  if (startedOver_) {
    finish(AttemptOutcome::retry(reason));
    return;
  }
  startedOver_ = true;
  log_.warning("Starting over with " + loggableUrl(url_) + ": " + reason);
  there_ = 0;
  size_.reset();
  validator_.clear();
  fetch();
}

// The server has nothing beyond what is there.
void CDownloadAttempt::judgeComplete() {
  if (order_.spec.size != 0 && there_ != order_.spec.size) {
    finish(AttemptOutcome::retry("the server has " + text(there_) + " bytes instead of " +
                                 text(order_.spec.size)));
    return;
  }
  arrive(there_);
}

void CDownloadAttempt::judgeBody(const HttpAnswer& answer) {
  const std::uint64_t arrived = fetch_->position().value_or(plan_->begin);
  if (fetch_->tooLong()) {
    finish(AttemptOutcome::retry("the server sent more than the " + text(arrived) +
                                 " bytes that it should"));
    return;
  }
  if (answer.code != CURLE_OK) {
    finish(judgeTransport(answer));
    return;
  }
  const std::uint64_t expected = order_.spec.size;
  const auto size = size_ ? size_ : (expected != 0 ? std::optional(expected) : std::nullopt);
  // A server may send less of a range than it was asked for, and need not say how much there is.
  const bool mayBeMore = !size || arrived < *size;
  if (mayBeMore && plan_->partial && arrived > ask_.begin) {
    fetch_->flush();
    there_ = arrived;
    fetch();
    return;
  }
  if (size && arrived < *size) {
    finish(AttemptOutcome::retry("the answer ended after " + text(arrived) + " of " + text(*size) +
                                 " bytes"));
    return;
  }
  fetch_->add();
  arrive(arrived);
}

void CDownloadAttempt::arrive(std::uint64_t size) {
  fetch_.reset();
  order_.progress->size = size;
  order_.progress->bytes = size;
  listener_.onArrived(order_.job, size);
}

// Reports once what has come is written, so that the next attempt finds it.
void CDownloadAttempt::finish(AttemptOutcome outcome) {
  fetch_.reset();
  if (writer_->idle()) {
    report(std::move(outcome));
  } else {
    ending_ = std::move(outcome);
  }
}

void CDownloadAttempt::report(AttemptOutcome outcome) {
  const DownloadResume& before = order_.resume.download();
  const DownloadResume now = order_.progress->resume().download();
  const bool sameVersion =
      before.begun() && !now.validator.empty() && now.validator == before.validator;
  outcome.progressed =
      sameVersion && lengthOf(now.written) >= lengthOf(before.written) + kWorthARetry;
  listener_.onEnded(order_.job, outcome);
}

void CDownloadAttempt::onWriterReady() {
  if (fetch_) {
    fetch_->resume();
  }
}

void CDownloadAttempt::onWriterIdle() {
  if (ending_) {
    report(*ending_);
  }
}

void CDownloadAttempt::onWriterFailed(const AttemptOutcome& outcome) {
  fetch_.reset();
  report(outcome);
}

}  // namespace zt_transfers
