#pragma once

#include <algorithm>
#include <cstdint>
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

// The states of CDownloadAttempt, whose function `enter` is the one that changes them:
//
//   kNew ──► kReopening ──► kFetching ──► kEnded
//     │          │           ▲  │           ▲
//     │          │           └──┘ restart   │
//     └──────────┴── nothing to fetch, ─────┘
//                    or it cannot be
//
// kNew also goes straight to kFetching when an earlier attempt has left nothing. Every state can be
// left for kEnded: the file cannot be written, or the attempt is stopped.
enum class DownloadState : std::uint8_t {
  kNew,
  kReopening,  // the pool opens the partial file of an earlier attempt
  kFetching,   // at least one request is under way, or is about to be sent
  kEnded,      // no request is under way, and no further report follows
};

constexpr bool mayFollow(DownloadState from, DownloadState to) {
  switch (to) {
    case DownloadState::kNew:
      return false;
    case DownloadState::kReopening:
      return from == DownloadState::kNew;
    case DownloadState::kFetching:
    case DownloadState::kEnded:
      return from != DownloadState::kEnded;
  }
  return false;
}

// One attempt to download one file, until all of its bytes have arrived.
//
// A large file from a server that supports ranges is fetched range by range, in file order. Several
// requests run in parallel if the connection limit allows it and one alone is slow. A range that
// one of them does not complete is fetched by another.
//
// Thread: the loop's. Destruction ends the attempt without a report; received bytes stay in the
// partial file.
class CDownloadAttempt final : public CPartialWriter::IListener, public CRangeFetch::IListener {
 public:
  static constexpr std::size_t kMaxFetches = 4;

  class IListener {
   public:
    virtual void onCheckpoint(AttemptId attemptId) = 0;
    // Each of these is the last call; the listener then retires the attempt. Received bytes may
    // still be being written.
    //
    // All bytes were received. The listener takes over the writer and finishes it.
    virtual void onArrived(AttemptId attemptId, std::uint64_t size) = 0;
    virtual void onEnded(AttemptId attemptId, const AttemptOutcome& outcome) = 0;
    // Whether all attempts together may send one more request.
    virtual bool hasRoom() const = 0;

   protected:
    ~IListener() = default;
  };

  // `kept`: the partial file that an earlier attempt has left, perhaps open; may be null.
  CDownloadAttempt(const CPartialWriter::Dependencies& dependencies, ILog& log, StartOrder order,
                   std::shared_ptr<CPartialFile> kept, IListener& listener);
  ~CDownloadAttempt();
  CDownloadAttempt(const CDownloadAttempt&) = delete;
  CDownloadAttempt& operator=(const CDownloadAttempt&) = delete;

  // May end the attempt at once.
  void begin();

  // Requests under way, at least one.
  std::size_t width() const { return std::max<std::size_t>(fetches_.size(), 1); }
  // Gives up one of several requests for the benefit of another file.
  void narrow();

  const std::shared_ptr<CPartialWriter>& writer() const { return writer_; }
  const StartOrder& order() const { return order_; }
  void discard();

 private:
  using State = DownloadState;
  using Fetches = std::vector<std::unique_ptr<CRangeFetch>>;

  void enter(State next);
  bool fetchNext();
  HttpRequest request() const;
  void beginVersion(const CRangeFetch& fetch, const FetchPlan& plan);
  void widen();
  bool worthMore() const;
  bool splitLargest();

  ByteSpan remainingOf(const CRangeFetch& fetch) const {
    return planner_.within(fetch.remaining());
  }
  void end(CRangeFetch& fetch);
  void endAll();
  void startOver(std::string reason);
  // Of a response that is not content.
  AttemptOutcome outcomeOf(const HttpResponse& response) const;
  void judgeFailed(CRangeFetch& fetch, const AttemptOutcome& outcome);
  void judgeComplete(CRangeFetch& fetch);
  void judgeBody(CRangeFetch& fetch, const HttpResponse& response);
  bool endIsCertain(const FetchPlan& plan) const;
  void confirmEnd(CRangeFetch& fetch);
  void judgeConfirmation(CRangeFetch& fetch, const HttpResponse& response);
  void continueAfter(CRangeFetch& fetch, bool mayBeMore);
  void arrive(std::uint64_t size);
  std::shared_ptr<CPartialFile> openFile();
  void finish(const AttemptOutcome& outcome);

  bool onHead(CRangeFetch& fetch, const FetchPlan& plan) override;
  void onFetched(CRangeFetch& fetch, const HttpResponse& response) override;
  void onReopened(CPartialFile::Found found, const DownloadResume& resume) override;
  void onWriterReady() override;
  void onWriterFailed(const AttemptOutcome& outcome) override { finish(outcome); }
  void onCheckpoint() override { listener_.onCheckpoint(order_.attemptId); }

  const CPartialWriter::Dependencies dependencies_;
  IHttpTransport& loop_;
  ILog& log_;
  const StartOrder order_;
  IListener& listener_;

  std::shared_ptr<CPartialFile> kept_;
  State state_ = State::kNew;
  std::shared_ptr<CPartialWriter> writer_;
  Fetches fetches_;
  std::size_t maxFetches_ = kMaxFetches;  // less after some have failed
  bool startedOver_ = false;
  // The request that asks whether the file has more bytes.
  const CRangeFetch* confirming_ = nullptr;

  CRangePlanner planner_;

  std::optional<TimePoint> firstByte_;     // of this attempt
  std::uint64_t bytesBefore_ = 0;          // present by then
  std::optional<AttemptOutcome> refusal_;  // of a response whose head is not acceptable
};

}  // namespace zt_transfers
