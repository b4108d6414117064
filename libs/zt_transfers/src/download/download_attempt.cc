#include "download/download_attempt.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "base/url_parts.h"
#include "engine/response_verdict.h"

namespace zt_transfers {
namespace {

// In bytes a second. A faster request is not limited by its connection, and further ones would not
// pay.
constexpr double kFastRequest = 200e6;
constexpr std::chrono::milliseconds kMinMeasurement{250};

AttemptOutcome wrongSize(std::uint64_t size, std::uint64_t expected) {
  return AttemptOutcome::retry(
      "the server has " + std::to_string(size) + " bytes instead of " + std::to_string(expected),
      failure::kWrongSize);
}

}  // namespace

CDownloadAttempt::CDownloadAttempt(const CPartialWriter::Dependencies& dependencies, ILog& log,
                                   StartOrder order, std::shared_ptr<CPartialFile> kept,
                                   IListener& listener)
    : dependencies_(dependencies),
      loop_(dependencies.loop),
      log_(log),
      order_(std::move(order)),
      listener_(listener),
      kept_(std::move(kept)),
      planner_({.size = order_.spec.size,
                .splitFrom = order_.parts.from,
                .rangeSize = order_.parts.size}) {}

CDownloadAttempt::~CDownloadAttempt() {
  if (state_ != State::kEnded) {
    enter(State::kEnded);
  }
  if (writer_) {
    writer_->close();
  }
}

void CDownloadAttempt::enter(State next) {
  if (!mayFollow(state_, next)) {
    throw std::logic_error("a download's state " + std::to_string(static_cast<unsigned>(state_)) +
                           " cannot become " + std::to_string(static_cast<unsigned>(next)));
  }
  state_ = next;
  if (next == State::kEnded) {
    endAll();
  }
}

void CDownloadAttempt::begin() {
  if (originOf(order_.spec.url).empty()) {
    finish(
        AttemptOutcome::final("it has no http or https URL to be fetched from", failure::kBadUrl));
    return;
  }
  try {
    writer_ = std::make_shared<CPartialWriter>(dependencies_, order_.attemptId, openFile(),
                                               order_.progress, *this);
  } catch (const std::exception& error) {
    finish(AttemptOutcome::final(error.what(), failure::kUnsafePath));
    return;
  }
  if (order_.resume.begun()) {
    enter(State::kReopening);
    writer_->reopen(order_.resume.download());
  } else {
    enter(State::kFetching);
    fetchNext();
  }
}

std::shared_ptr<CPartialFile> CDownloadAttempt::openFile() {
  if (kept_ && kept_->renew(order_)) {
    return std::move(kept_);
  }
  dependencies_.pool.post([file = std::move(kept_)] {});
  return std::make_shared<CPartialFile>(dependencies_.fileOps, CPartialFile::planFor(order_));
}

void CDownloadAttempt::discard() {
  if (writer_) {
    writer_->file()->discard();
  }
}

void CDownloadAttempt::narrow() {
  if (fetches_.size() > 1) {
    planner_.giveBack(fetches_.back()->remaining());
    end(*fetches_.back());
  }
}

void CDownloadAttempt::onReopened(CPartialFile::Found found, const DownloadResume& resume) {
  if (found == CPartialFile::Found::kFinalized) {
    finish(AttemptOutcome::done());
    return;
  }
  ByteSpans there = resume.written;
  if (!isExact(resume.validator)) {
    // Only the bytes of one response are known to belong to one version.
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
  enter(State::kFetching);
  fetchNext();
}

// Requests the first range that no request covers yet. False when the attempt has ended instead.
bool CDownloadAttempt::fetchNext() {
  try {
    const std::uint64_t maxSize = order_.spec.size != 0 ? order_.spec.size : CRangeFetch::kNoEnd;
    fetches_.push_back(std::make_unique<CRangeFetch>(
        CRangeFetch::Dependencies{loop_, log_, *writer_, *order_.progress, *this}, request(),
        planner_.take(), maxSize));
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
  // The bytes as they are stored, so that ranges and sizes match.
  request.headers.emplace_back("Accept-Encoding", "identity");
  request.responseSize = order_.spec.size;
  request.proxy = order_.proxy;
  return request;
}

// Sends further requests as long as each of them is likely to pay.
void CDownloadAttempt::widen() {
  while (planner_.begun() && planner_.splits() && !fetches_.empty() &&
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
  return time >= kMinMeasurement &&
         static_cast<double>(bytes) < kFastRequest * std::chrono::duration<double>(time).count();
}

// Shortens the request with the largest remaining range to one range, and frees the others.
bool CDownloadAttempt::splitLargest() {
  const auto largest = std::max_element(
      fetches_.begin(), fetches_.end(), [this](const auto& left, const auto& right) {
        return remainingOf(*left).length() < remainingOf(*right).length();
      });
  const ByteSpan remaining = remainingOf(**largest);
  if (!planner_.size() || remaining.length() < 2 * planner_.rangeSize()) {
    return false;
  }
  const std::uint64_t stop = remaining.begin + planner_.rangeSize();
  (*largest)->stopAt(stop);
  planner_.giveBack({stop, remaining.end});
  return true;
}

void CDownloadAttempt::end(CRangeFetch& fetch) {
  fetch.end();
  const auto found = std::find_if(fetches_.begin(), fetches_.end(),
                                  [&](const auto& one) { return one.get() == &fetch; });
  loop_.retire(std::move(*found));
  fetches_.erase(found);
}

void CDownloadAttempt::endAll() {
  while (!fetches_.empty()) {
    end(*fetches_.back());
  }
}

bool CDownloadAttempt::onHead(CRangeFetch& fetch, const FetchPlan& plan) {
  if (plan.kind != FetchPlan::Kind::kBody) {
    return false;
  }
  const std::uint64_t expected = order_.spec.size;
  if (expected != 0 && plan.size && *plan.size != expected) {
    refusal_ = wrongSize(*plan.size, expected);
    return false;
  }
  planner_.noteServer(fetch.rangeRequest(), plan);
  if (!plan.partial && fetches_.size() > 1) {
    return false;  // the others belong to another version
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

// The first bytes of a version follow.
void CDownloadAttempt::beginVersion(const CRangeFetch& fetch, const FetchPlan& plan) {
  if (planner_.begun()) {
    log_.information("Starting over with " + loggableUrl(order_.spec.url) +
                     ": the server sends all of it, or another version");
  }
  planner_.beginVersion(plan, fetch.remaining());
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
                             ? judgeTransport(response, loop_.clock().secondsSince1970())
                             : judgeRefusal(response, loop_.clock().secondsSince1970()));
      return;
  }
}

// Requests the whole file, without a condition that the server could evaluate wrongly again.
void CDownloadAttempt::startOver(std::string reason) {
  if (startedOver_) {
    finish(AttemptOutcome::retry(std::move(reason), failure::kServerChanged));
    return;
  }
  startedOver_ = true;
  log_.warning("Starting over with " + loggableUrl(order_.spec.url) + ": " + reason);
  endAll();
  planner_.forgetVersion();
  planner_.refuseRanges();
  enter(State::kFetching);
  fetchNext();
}

// When one of several requests fails, the others take over its range: the server may want fewer.
void CDownloadAttempt::judgeFailed(CRangeFetch& fetch, const AttemptOutcome& outcome) {
  if (fetches_.size() == 1) {
    finish(outcome);
    return;
  }
  log_.information("One of " + std::to_string(fetches_.size()) + " requests for " +
                   loggableUrl(order_.spec.url) +
                   " failed, the others fetch its range: " + outcome.reason);
  planner_.giveBack(fetch.remaining());
  end(fetch);
  maxFetches_ = fetches_.size();
}

// The server has no bytes beyond those that have arrived.
void CDownloadAttempt::judgeComplete(CRangeFetch& fetch) {
  const std::uint64_t there = fetch.rangeRequest().begin;
  if (order_.spec.size != 0 && there != order_.spec.size) {
    finish(wrongSize(there, order_.spec.size));
    return;
  }
  arrive(there);
}

void CDownloadAttempt::judgeBody(CRangeFetch& fetch, const HttpResponse& response) {
  if (!fetch.wanted()) {
    startOver("the server sends all of it, or another version");
    return;
  }
  const std::uint64_t arrived = fetch.remaining().begin;
  if (fetch.tooLong()) {
    finish(AttemptOutcome::retry(
        "the server sent more than the " + std::to_string(arrived) + " bytes that it should",
        failure::kWrongSize));
    return;
  }
  if (response.code != CURLE_OK && !fetch.stopped()) {
    judgeFailed(fetch, judgeTransport(response, loop_.clock().secondsSince1970()));
    return;
  }
  // A server may send less of a range than was requested, and need not announce the size.
  const bool mayBeMore =
      fetch.stopped() || (fetch.plan()->partial && arrived > fetch.rangeRequest().begin);
  const std::uint64_t expected = order_.spec.size;
  const auto size =
      planner_.size() ? planner_.size() : (expected != 0 ? std::optional(expected) : std::nullopt);
  if (!mayBeMore && size && arrived < *size) {
    finish(AttemptOutcome::retry("the response ended after " + std::to_string(arrived) + " of " +
                                     std::to_string(*size) + " bytes",
                                 failure::kConnectionLost));
    return;
  }
  continueAfter(fetch, mayBeMore);
}

void CDownloadAttempt::continueAfter(CRangeFetch& fetch, bool mayBeMore) {
  const ByteSpan remaining = fetch.remaining();
  if (!mayBeMore) {
    fetch.add();
    arrive(remaining.begin);
    return;
  }
  planner_.giveBack(remaining);
  maxFetches_ = std::min(maxFetches_ + 1, kMaxFetches);
  if (planner_.none() && fetches_.size() == 1) {
    fetch.add();
    arrive(*planner_.size());
    return;
  }
  end(fetch);
  // With a limited rate one request is as fast as several.
  const bool enough = loop_.throttle().limited() && !fetches_.empty();
  if (!planner_.none() && !enough && fetchNext()) {
    widen();
  }
}

void CDownloadAttempt::arrive(std::uint64_t size) {
  enter(State::kEnded);
  order_.progress->size = size;
  order_.progress->bytes = size;
  listener_.onArrived(order_.attemptId, size);
}

void CDownloadAttempt::finish(const AttemptOutcome& outcome) {
  enter(State::kEnded);
  if (writer_) {
    writer_->endInput();
    writer_->close();
  }
  listener_.onEnded(order_.attemptId, outcome);
}

void CDownloadAttempt::onWriterReady() {
  for (const auto& fetch : fetches_) {
    fetch->resume();
  }
  widen();
}

}  // namespace zt_transfers
