#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/log.h"
#include "download/partial_writer.h"
#include "download/range_fetch.h"
#include "download/range_planner.h"
#include "download/response_plan.h"
#include "engine/attempt.h"

namespace zt_transfers {

// One attempt to download one file, up to the moment at which all of it has arrived:
//
//   reopening ──► fetching ──► arrived
//   (if there is  ▲      │
//    a rest)      └──────┘ start over, another range
//
// A large file from a server that does ranges is fetched in pieces, in their order, and by several
// requests at a time where there is room for them and one alone is slow. Whatever one of them does
// not bring is fetched by another.
//
// Destruction ends it without an answer; what has come stays in the partial file.
//
// Thread: the loop's. The listener's calls may destroy the attempt.
class CDownloadAttempt final : public CPartialWriter::IListener, public CRangeFetch::IListener {
 public:
  static constexpr std::size_t kMaxFetches = 4;

  class IListener {
   public:
    virtual void onCheckpoint(AttemptId attemptId) = 0;
    // All bytes were received: the writer has them and is nobody's from now on.
    virtual void onArrived(AttemptId attemptId, std::uint64_t size) = 0;
    virtual void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) = 0;
    // Whether there is room for one more request, beside those of all attempts.
    virtual bool hasRoom() const = 0;

   protected:
    ~IListener() = default;
  };

  CDownloadAttempt(const CPartialWriter::Dependencies& dependencies, ILog& log, StartOrder order,
                   IListener& listener);
  ~CDownloadAttempt();
  CDownloadAttempt(const CDownloadAttempt&) = delete;
  CDownloadAttempt& operator=(const CDownloadAttempt&) = delete;

  // May end the attempt at once.
  void begin();

  // Requests under way, at least one.
  std::size_t width() const { return std::max<std::size_t>(fetches_.size(), 1); }
  // Gives up one of several requests, for another file.
  void narrow();

  const std::shared_ptr<CPartialWriter>& writer() const { return writer_; }
  const std::shared_ptr<AttemptProgress>& progress() const { return order_.progress; }
  void discard();

 private:
  using Fetches = std::vector<std::unique_ptr<CRangeFetch>>;

  bool fetchNext();
  HttpRequest request() const;
  void beginVersion(const CRangeFetch& fetch, const FetchPlan& plan);
  void widen();
  bool worthMore() const;
  bool splitLargest();

  ByteSpan restOf(const CRangeFetch& fetch) const { return planner_.within(fetch.rest()); }
  std::unique_ptr<CRangeFetch> takeOut(CRangeFetch& fetch);
  void startOver(std::string reason);
  void judgeFailed(CRangeFetch& fetch, const AttemptOutcome& outcome);
  void judgeComplete(CRangeFetch& fetch);
  void judgeBody(CRangeFetch& fetch, const HttpResponse& response);
  void goOnAfter(std::unique_ptr<CRangeFetch> fetch, bool mayBeMore);
  void arrive(std::uint64_t size);
  void finish(AttemptOutcome outcome);
  void report(AttemptOutcome outcome);

  bool onHead(CRangeFetch& fetch, const FetchPlan& plan) override;
  void onFetched(CRangeFetch& fetch, const HttpResponse& response) override;
  void onReopened(CPartialFile::Found found, const DownloadResume& resume) override;
  void onWriterReady() override;
  void onWriterIdle() override;
  void onWriterFailed(const AttemptOutcome& outcome) override;
  void onCheckpoint() override { listener_.onCheckpoint(order_.attemptId); }

  const CPartialWriter::Dependencies dependencies_;
  CHttpLoop& loop_;
  ILog& log_;
  const StartOrder order_;
  IListener& listener_;

  std::shared_ptr<CPartialWriter> writer_;
  Fetches fetches_;
  std::size_t maxFetches_ = kMaxFetches;  // less after some have failed
  bool startedOver_ = false;

  CRangePlanner planner_;

  std::optional<TimePoint> firstByte_;     // of this attempt
  std::uint64_t bytesBefore_ = 0;          // that were there by then
  std::optional<AttemptOutcome> refusal_;  // of an answer whose head is not what it should be
  std::optional<AttemptOutcome> ending_;   // to be reported once everything is written
};

}  // namespace zt_transfers
