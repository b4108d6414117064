// The part of CDownloadAttempt that judges responses.

#include <algorithm>
#include <exception>
#include <utility>

#include "base/url_parts.h"
#include "download/download_attempt.h"
#include "engine/response_verdict.h"

namespace zt_transfers {
namespace {

AttemptOutcome wrongSize(std::uint64_t size, std::uint64_t expected) {
  return AttemptOutcome::retry(
      "the server has " + std::to_string(size) + " bytes instead of " + std::to_string(expected),
      failure::kWrongSize);
}

}  // namespace

bool CDownloadAttempt::onHead(CRangeFetch& fetch, const FetchPlan& plan) {
  if (&fetch == confirming_ && !plan.partial) {
    return false;
  }
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
  if (&fetch == confirming_) {
    judgeConfirmation(fetch, response);
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
      judgeFailed(fetch, outcomeOf(response));
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

AttemptOutcome CDownloadAttempt::outcomeOf(const HttpResponse& response) const {
  const std::int64_t now = loop_.clock().secondsSince1970();
  return response.code != CURLE_OK ? judgeTransport(response, now) : judgeRefusal(response, now);
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
  const bool empty = fetch.plan()->partial && arrived == fetch.rangeRequest().begin;
  if (empty && !fetch.stopped()) {
    finish(AttemptOutcome::retry("the response ended before the range that it announced",
                                 failure::kConnectionLost));
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
  if (!mayBeMore && !endIsCertain(*fetch.plan())) {
    confirmEnd(fetch);
    return;
  }
  continueAfter(fetch, mayBeMore);
}

// A connection that was cut looks like the end of a body without a length.
bool CDownloadAttempt::endIsCertain(const FetchPlan& plan) const {
  return !plan.endsUnmarked || order_.spec.size != 0 || !order_.spec.contentMd5.empty();
}

// Asks for the bytes behind the last one.
void CDownloadAttempt::confirmEnd(CRangeFetch& fetch) {
  RangeRequest rest{
      .begin = fetch.remaining().begin, .ranged = true, .validator = planner_.validator()};
  end(fetch);
  try {
    fetches_.push_back(std::make_unique<CRangeFetch>(
        CRangeFetch::Dependencies{loop_, log_, *writer_, *order_.progress, *this}, request(),
        std::move(rest), CRangeFetch::kNoEnd));
    confirming_ = fetches_.back().get();
  } catch (const std::exception& error) {
    finish(AttemptOutcome::final(error.what(), failure::kBadRequest));
  }
}

void CDownloadAttempt::judgeConfirmation(CRangeFetch& fetch, const HttpResponse& response) {
  constexpr long kRangeNotSatisfiable = 416;
  confirming_ = nullptr;
  const FetchPlan::Kind kind = fetch.plan() ? fetch.plan()->kind : FetchPlan::Kind::kOther;
  const bool nothingMore =
      kind == FetchPlan::Kind::kComplete ||
      (response.status == kRangeNotSatisfiable && response.header("content-range").empty());
  if (nothingMore) {
    arrive(fetch.rangeRequest().begin);
  } else if (fetch.wanted()) {
    judgeBody(fetch, response);
  } else if (kind == FetchPlan::Kind::kOther) {
    judgeFailed(fetch, outcomeOf(response));
  } else {
    finish(AttemptOutcome::retry(
        "the response named no end, and the server does not tell whether there is more",
        failure::kWrongSize));
  }
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

}  // namespace zt_transfers
