#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "download/range_fetch.h"
#include "download/response_plan.h"
#include "engine/download_resume.h"

namespace zt_transfers {

// The ranges of the first `size` bytes that are not in `there`.
ByteSpans missingSpans(const ByteSpans& there, std::uint64_t size);

// Takes the first missing range, at most `max` bytes of it. There must be one.
ByteSpan takeFirst(ByteSpans& missing, std::uint64_t max);

// The byte ranges of one file version that no request covers yet. A large file from a server that
// supports ranges is fetched range by range.
//
// Thread: one at a time.
class CRangePlanner {
 public:
  struct File {
    std::uint64_t size = 0;       // bytes, as announced by the page; 0: not announced
    std::uint64_t splitFrom = 0;  // bytes; a smaller file is fetched by one request
    std::uint64_t rangeSize = 0;  // bytes; 0: derived from the file's size
  };

  explicit CRangePlanner(const File& file) : file_(file) { forgetVersion(); }

  // Continues a version of which these bytes have arrived.
  void takeUp(const DownloadResume& resume, const ByteSpans& there);
  // Starts over: no bytes of any version have arrived.
  void forgetVersion();
  // Learns from a response whether the server supports ranges.
  void noteServer(const RangeRequest& rangeRequest, const FetchPlan& plan);
  // Requests the whole file until a response shows again that the server supports ranges.
  void refuseRanges() { offersRanges_ = false; }
  // The first response of a version has arrived, and brings this range.
  void beginVersion(const FetchPlan& plan, ByteSpan fetched);
  // Learns the size if the response contains it.
  void noteSize(const FetchPlan& plan);

  bool begun() const { return begun_; }
  const std::string& validator() const { return validator_; }
  std::optional<std::uint64_t> size() const { return size_; }
  bool splits() const;
  std::uint64_t rangeSize() const;

  bool none() const { return missing_.empty(); }
  // Takes the first missing range, which counts as covered from now on. There must be one.
  RangeRequest take();
  // The range is not covered any more.
  void giveBack(ByteSpan span);
  // The part of the range that lies within the file.
  ByteSpan within(ByteSpan span) const;

 private:
  static constexpr std::uint64_t kNoEnd = CRangeFetch::kNoEnd;

  std::uint64_t expectedSize() const { return size_.value_or(file_.size); }

  const File file_;
  bool begun_ = false;  // bytes of this version have arrived or are about to
  std::string validator_;
  std::optional<std::uint64_t> size_;
  bool offersRanges_ = true;  // until the server shows otherwise
  bool refusesRanges_ = false;
  ByteSpans missing_;
};

}  // namespace zt_transfers
