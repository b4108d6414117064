#include "download/download_attempt.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "base/url_parts.h"

namespace zt_transfers {
namespace {

// In bytes a second. A faster request is not limited by its connection, and further ones would not
// pay.
constexpr double kFastRequest = 200e6;
constexpr std::chrono::milliseconds kMinMeasurement{250};

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
