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

// Of one version of a file the bytes that nobody fetches yet, and in which portions they are to be
// asked for. A large file from a server that does ranges is fetched in pieces.
//
// Thread: one at a time.
class CRangePlanner {
 public:
  struct File {
    std::uint64_t size = 0;        // bytes, as the page said; 0: it did not say
    std::uint64_t piecesFrom = 0;  // bytes; a smaller file is not fetched in pieces
    std::uint64_t pieceSize = 0;   // bytes; 0: chosen by the file's size
  };

  explicit CRangePlanner(const File& file) : file_(file) { forgetVersion(); }

  // Goes on with a version of which these bytes are there.
  void takeUp(const DownloadResume& resume, const ByteSpans& there);
  // There are no bytes of any version.
  void forgetVersion();
  // An answer to a ranged or another request shows what the server does.
  void noteServer(const RangeRequest& rangeRequest, const FetchPlan& plan);
  // All of a version is asked for at once, until an answer shows anew what the server does.
  void refuseRanges() { offersRanges_ = false; }
  // The first answer of a version, which brings this much of it.
  void beginVersion(const FetchPlan& plan, ByteSpan fetched);
  // The size, if an answer tells it.
  void noteSize(const FetchPlan& plan);

  bool begun() const { return begun_; }
  const std::string& validator() const { return validator_; }
  std::optional<std::uint64_t> size() const { return size_; }
  bool takesPieces() const;
  std::uint64_t pieceSize() const;

  bool none() const { return missing_.empty(); }
  // The first bytes that are missing, which count as fetched from now on. There must be some.
  RangeRequest take();
  // They are not fetched after all.
  void giveBack(ByteSpan span);
  // What of the span lies within the file.
  ByteSpan within(ByteSpan span) const;

 private:
  static constexpr std::uint64_t kNoEnd = CRangeFetch::kNoEnd;

  std::uint64_t expectedSize() const { return size_.value_or(file_.size); }

  const File file_;
  bool begun_ = false;  // of this version there are bytes, or are about to be
  std::string validator_;
  std::optional<std::uint64_t> size_;
  bool offersRanges_ = true;  // until the server shows otherwise
  bool refusesRanges_ = false;
  ByteSpans missing_;
};

}  // namespace zt_transfers
