#include "download/download_attempt.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/ascii.h"
#include "base/url_parts.h"
#include "engine/response_verdict.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kMebibyte = 1024 * 1024;

// One request that brings so much a second is not held up by its line, and more would only cost.
constexpr double kQuick = 200e6;
constexpr std::chrono::milliseconds kLongEnoughToJudge{250};

// So much more than the attempt before makes up for the retry that it cost.
constexpr std::uint64_t kWorthARetry = kMebibyte;

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

CDownloadAttempt::CDownloadAttempt(const CPartialWriter::Dependencies& dependencies, ILog& log,
                                   StartOrder order, IListener& listener)
    : dependencies_(dependencies),
      loop_(dependencies.loop),
      log_(log),
      order_(std::move(order)),
      listener_(listener),
      planner_({.size = order_.spec.size,
                .piecesFrom = order_.parts.from,
                .pieceSize = order_.parts.size}) {}

CDownloadAttempt::~CDownloadAttempt() {
  fetches_.clear();
  if (writer_) {
    writer_->close();
  }
}

void CDownloadAttempt::begin() {
  if (originOf(order_.spec.url).empty()) {
    report(
        AttemptOutcome::final("it has no http or https URL to be fetched from", failure::kBadUrl));
    return;
  }
  try {
    writer_ = std::make_shared<CPartialWriter>(
        dependencies_, order_.attemptId,
        std::make_shared<CPartialFile>(dependencies_.fileOps, planOf(order_)), order_.progress,
        *this);
  } catch (const std::exception& error) {
    report(AttemptOutcome::final(error.what(), failure::kUnsafePath));
    return;
  }
  if (order_.resume.begun()) {
    writer_->reopen(order_.resume.download());
  } else {
    fetchNext();
  }
}

void CDownloadAttempt::discard() {
  if (writer_) {
    writer_->file()->discard();
  }
}

void CDownloadAttempt::narrow() {
  if (fetches_.size() > 1) {
    planner_.giveBack(fetches_.back()->rest());
    fetches_.pop_back();
  }
}

void CDownloadAttempt::onReopened(CPartialFile::Found found, const DownloadResume& resume) {
  if (found == CPartialFile::Found::kFinalized) {
    report(AttemptOutcome::done());
    return;
  }
  ByteSpans there = resume.written;
  if (!isExact(resume.validator)) {
    // Only what one answer has brought is known to be of one version.
    there.resize(!there.empty() && there.front().begin == 0 ? 1 : 0);
  }
  if (found == CPartialFile::Found::kPartial && !there.empty()) {
    if (lengthOf(there) == resume.size) {
      arrive(resume.size);
      return;
    }
    planner_.takeUp(resume, there);
    order_.progress->bytes = lengthOf(there);
  }
  fetchNext();
}

// Asks for the first bytes that nobody fetches. False when that has ended the attempt.
bool CDownloadAttempt::fetchNext() {
  try {
    const std::uint64_t most = order_.spec.size != 0 ? order_.spec.size : CRangeFetch::kNoEnd;
    fetches_.push_back(std::make_unique<CRangeFetch>(
        CRangeFetch::Dependencies{loop_, log_, *writer_, *order_.progress, *this}, request(),
        planner_.take(), most));
    return true;
  } catch (const std::exception& error) {
    finish(AttemptOutcome::final(error.what(), failure::kBadRequest));
    return false;
  }
}

HttpRequest CDownloadAttempt::request() const {
  HttpRequest request;
  request.method = "GET";
  request.url = order_.spec.url;
  // Bytes as they are stored, so that they can be counted.
  request.headers.emplace_back("Accept-Encoding", "identity");
  request.responseSize = order_.spec.size;
  request.proxy = order_.proxy;
  request.userAgent = CZtTransfersGlobalConfig::getInstance()->userAgent();
  return request;
}

// Begins further requests as long as each of them is likely to pay.
void CDownloadAttempt::widen() {
  while (planner_.begun() && planner_.takesPieces() && !fetches_.empty() &&
         fetches_.size() < maxFetches_ && worthMore() && listener_.hasRoom()) {
    if ((planner_.none() && !splitLargest()) || !fetchNext()) {
      return;
    }
  }
}

bool CDownloadAttempt::worthMore() const {
  if (!firstByte_ || loop_.throttle().limited()) {
    return false;
  }
  const Duration time = loop_.clock().now() - *firstByte_;
  const std::uint64_t bytes = order_.progress->bytes - bytesBefore_;
  return time >= kLongEnoughToJudge &&
         static_cast<double>(bytes) < kQuick * std::chrono::duration<double>(time).count();
}

// Leaves a piece of the largest rest to its request, and all else to others.
bool CDownloadAttempt::splitLargest() {
  const auto largest = std::max_element(fetches_.begin(), fetches_.end(),
                                        [this](const auto& left, const auto& right) {
                                          return restOf(*left).length() < restOf(*right).length();
                                        });
  const ByteSpan rest = restOf(**largest);
  if (!planner_.size() || rest.length() < 2 * planner_.pieceSize()) {
    return false;
  }
  const std::uint64_t stop = rest.begin + planner_.pieceSize();
  (*largest)->stopAt(stop);
  planner_.giveBack({stop, rest.end});
  return true;
}

std::unique_ptr<CRangeFetch> CDownloadAttempt::takeOut(CRangeFetch& fetch) {
  const auto found = std::find_if(fetches_.begin(), fetches_.end(),
                                  [&](const auto& one) { return one.get() == &fetch; });
  std::unique_ptr<CRangeFetch> taken = std::move(*found);
  fetches_.erase(found);
  return taken;
}

bool CDownloadAttempt::onHead(CRangeFetch& fetch, const FetchPlan& plan) {
  if (plan.kind != FetchPlan::Kind::kBody) {
    return false;
  }
  const std::uint64_t expected = order_.spec.size;
  if (expected != 0 && plan.size && *plan.size != expected) {
    refusal_ = AttemptOutcome::retry(
        "the server has " + text(*plan.size) + " bytes instead of " + text(expected),
        failure::kWrongSize);
    return false;
  }
  planner_.noteServer(fetch.rangeRequest(), plan);
  if (!plan.partial && fetches_.size() > 1) {
    return false;  // the others are of another version, or the last to be had
  }
  if (!plan.partial || !planner_.begun()) {
    if (plan.partial && !plan.offersRanges) {
      return false;
    }
    beginVersion(fetch, plan);
  } else {
    planner_.noteSize(plan);
  }
  if (const auto size = planner_.size()) {
    order_.progress->size = *size;
  }
  if (!firstByte_) {
    firstByte_ = loop_.clock().now();
    bytesBefore_ = order_.progress->bytes;
  }
  return true;
}

// Its first bytes come now.
void CDownloadAttempt::beginVersion(const CRangeFetch& fetch, const FetchPlan& plan) {
  if (planner_.begun()) {
    log_.information("Starting over with " + loggableUrl(order_.spec.url) +
                     ": the server sends all of it, or another version");
  }
  planner_.beginVersion(plan, fetch.rest());
  writer_->restart(planner_.validator(), planner_.size().value_or(DownloadResume::kUnknown));
  order_.progress->bytes = 0;
  firstByte_.reset();
}

void CDownloadAttempt::onFetched(CRangeFetch& fetch, const HttpResponse& response) {
  if (refusal_) {
    finish(*refusal_);
    return;
  }
  switch (fetch.plan() ? fetch.plan()->kind : FetchPlan::Kind::kOther) {
    case FetchPlan::Kind::kBody:
      judgeBody(fetch, response);
      return;
    case FetchPlan::Kind::kComplete:
      judgeComplete(fetch);
      return;
    case FetchPlan::Kind::kStartOver:
      startOver(fetch.plan()->reason);
      return;
    case FetchPlan::Kind::kOther:
      judgeFailed(fetch, response.code != CURLE_OK
                             ? judgeTransport(response)
                             : judgeRefusal(response, loop_.clock().secondsSince1970()));
      return;
  }
}

// Asks for the whole, without a condition that the server could get wrong again.
void CDownloadAttempt::startOver(std::string reason) {
  if (startedOver_) {
    finish(AttemptOutcome::retry(std::move(reason), failure::kServerChanged));
    return;
  }
  startedOver_ = true;
  log_.warning("Starting over with " + loggableUrl(order_.spec.url) + ": " + reason);
  fetches_.clear();
  planner_.forgetVersion();
  planner_.refuseRanges();
  fetchNext();
}

// One of several leaves its part to the others, which may well be what the server wants.
void CDownloadAttempt::judgeFailed(CRangeFetch& fetch, const AttemptOutcome& outcome) {
  if (fetches_.size() == 1) {
    finish(outcome);
    return;
  }
  log_.information("One of " + text(fetches_.size()) + " requests for " +
                   loggableUrl(order_.spec.url) +
                   " failed, the others fetch its part: " + outcome.reason);
  planner_.giveBack(fetch.rest());
  takeOut(fetch);
  maxFetches_ = fetches_.size();
}

// The server has nothing beyond what is there.
void CDownloadAttempt::judgeComplete(CRangeFetch& fetch) {
  const std::uint64_t there = fetch.rangeRequest().begin;
  if (order_.spec.size != 0 && there != order_.spec.size) {
    finish(AttemptOutcome::retry(
        "the server has " + text(there) + " bytes instead of " + text(order_.spec.size),
        failure::kWrongSize));
    return;
  }
  arrive(there);
}

void CDownloadAttempt::judgeBody(CRangeFetch& fetch, const HttpResponse& response) {
  if (!fetch.wanted()) {
    startOver("the server sends all of it, or another version");
    return;
  }
  const std::uint64_t arrived = fetch.rest().begin;
  if (fetch.tooLong()) {
    finish(AttemptOutcome::retry(
        "the server sent more than the " + text(arrived) + " bytes that it should",
        failure::kWrongSize));
    return;
  }
  if (response.code != CURLE_OK && !fetch.stopped()) {
    judgeFailed(fetch, judgeTransport(response));
    return;
  }
  // A server may send less of a range than it was asked for, and need not say how much there is.
  const bool mayBeMore =
      fetch.stopped() || (fetch.plan()->partial && arrived > fetch.rangeRequest().begin);
  const std::uint64_t expected = order_.spec.size;
  const auto size =
      planner_.size() ? planner_.size() : (expected != 0 ? std::optional(expected) : std::nullopt);
  if (!mayBeMore && size && arrived < *size) {
    finish(AttemptOutcome::retry(
        "the answer ended after " + text(arrived) + " of " + text(*size) + " bytes",
        failure::kConnectionLost));
    return;
  }
  goOnAfter(takeOut(fetch), mayBeMore);
}

void CDownloadAttempt::goOnAfter(std::unique_ptr<CRangeFetch> fetch, bool mayBeMore) {
  if (!mayBeMore) {
    fetch->add();
    arrive(fetch->rest().begin);
    return;
  }
  planner_.giveBack(fetch->rest());
  maxFetches_ = std::min(maxFetches_ + 1, kMaxFetches);
  if (planner_.none() && fetches_.empty()) {
    fetch->add();
    arrive(*planner_.size());
    return;
  }
  fetch.reset();
  // Under a limit one request does as much as several.
  const bool enough = loop_.throttle().limited() && !fetches_.empty();
  if (!planner_.none() && !enough && fetchNext()) {
    widen();
  }
}

void CDownloadAttempt::arrive(std::uint64_t size) {
  fetches_.clear();
  order_.progress->size = size;
  order_.progress->bytes = size;
  listener_.onArrived(order_.attemptId, size);
}

// Reports once what has come is written, so that the next attempt finds it.
void CDownloadAttempt::finish(AttemptOutcome outcome) {
  fetches_.clear();
  writer_->endInput();
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
  listener_.onEnded(order_.attemptId, outcome);
}

void CDownloadAttempt::onWriterReady() {
  for (const auto& fetch : fetches_) {
    fetch->resume();
  }
  widen();
}

void CDownloadAttempt::onWriterIdle() {
  if (ending_) {
    report(*ending_);
  }
}

void CDownloadAttempt::onWriterFailed(const AttemptOutcome& outcome) {
  fetches_.clear();
  report(outcome);
}

}  // namespace zt_transfers
