#include "download/range_planner.h"

#include <algorithm>

namespace zt_transfers {
namespace {

constexpr std::uint64_t kMebibyte = 1024 * 1024;

// Small enough that hashing, which follows the file's order, does not fall far behind.
constexpr std::uint64_t kMinRange = 8 * kMebibyte;
constexpr std::uint64_t kMaxRange = 32 * kMebibyte;
constexpr std::uint64_t kRanges = 8;

}  // namespace

ByteSpans missingSpans(const ByteSpans& there, std::uint64_t size) {
  ByteSpans missing;
  std::uint64_t position = 0;
  for (const ByteSpan& span : there) {
    if (span.begin >= size) {
      break;
    }
    addSpan(missing, {position, span.begin});
    position = span.end;
  }
  if (position < size) {
    addSpan(missing, {position, size});
  }
  return missing;
}

ByteSpan takeFirst(ByteSpans& missing, std::uint64_t max) {
  ByteSpan& first = missing.front();
  const ByteSpan taken{first.begin, first.begin + std::min(max, first.length())};
  first.begin = taken.end;
  if (first.length() == 0) {
    missing.erase(missing.begin());
  }
  return taken;
}

void CRangePlanner::takeUp(const DownloadResume& resume, const ByteSpans& there) {
  begun_ = true;
  validator_ = resume.validator;
  if (resume.size != DownloadResume::kUnknown) {
    size_ = resume.size;
  }
  missing_ = missingSpans(there, size_.value_or(kNoEnd));
}

void CRangePlanner::forgetVersion() {
  begun_ = false;
  validator_.clear();
  size_.reset();
  missing_ = {{0, kNoEnd}};
}

void CRangePlanner::noteServer(const RangeRequest& rangeRequest, const FetchPlan& plan) {
  offersRanges_ = plan.offersRanges;
  refusesRanges_ = refusesRanges_ || (rangeRequest.ranged && !plan.partial);
}

void CRangePlanner::beginVersion(const FetchPlan& plan, ByteSpan fetched) {
  begun_ = true;
  validator_ = plan.validator;
  size_.reset();
  noteSize(plan);
  missing_ = plan.partial ? missingSpans({within(fetched)}, size_.value_or(kNoEnd)) : ByteSpans();
}

void CRangePlanner::noteSize(const FetchPlan& plan) {
  if (plan.size) {
    size_ = plan.size;
  } else if (plan.partial && file_.size != 0) {
    size_ = file_.size;
  }
}

bool CRangePlanner::splits() const {
  const std::uint64_t size = expectedSize();
  return offersRanges_ && !refusesRanges_ && size != 0 && size >= file_.splitFrom &&
         (!begun_ || isExact(validator_));
}

std::uint64_t CRangePlanner::rangeSize() const {
  return file_.rangeSize != 0 ? file_.rangeSize
                              : std::clamp(expectedSize() / kRanges, kMinRange, kMaxRange);
}

RangeRequest CRangePlanner::take() {
  // Without a validator the remaining bytes could belong to another version.
  if (begun_ && validator_.empty()) {
    forgetVersion();
  }
  const ByteSpan span = takeFirst(missing_, splits() ? rangeSize() : kNoEnd);
  RangeRequest rangeRequest;
  rangeRequest.begin = span.begin;
  rangeRequest.ranged = begun_ || splits();
  if (begun_) {
    rangeRequest.validator = validator_;
    rangeRequest.size = size_;
  }
  if (rangeRequest.ranged && span.end != size_.value_or(kNoEnd)) {
    rangeRequest.end = span.end;
  }
  return rangeRequest;
}

void CRangePlanner::giveBack(ByteSpan span) {
  addSpan(missing_, within(span));
}

ByteSpan CRangePlanner::within(ByteSpan span) const {
  return {span.begin, std::max(span.begin, std::min(span.end, size_.value_or(kNoEnd)))};
}

}  // namespace zt_transfers
