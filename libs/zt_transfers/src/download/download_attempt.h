#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "download/answer_plan.h"
#include "download/partial_writer.h"
#include "download/range_fetch.h"
#include "engine/attempt.h"
#include "log/log.h"

namespace zt_transfers {

// One attempt to download one file, up to the moment at which all of it has arrived:
//
//   reopening ──► fetching ──► arrived
//   (if there is  ▲      │
//    a rest)      └──────┘ redirect, start over, another range
//
// Destruction ends it without an answer; what has come stays in the partial file.
//
// Thread: the loop's. The listener's calls may destroy the attempt.
class CDownloadAttempt final : public CPartialWriter::IListener, public CRangeFetch::IListener {
 public:
  class IListener {
   public:
    virtual void onCheckpoint(JobId job) = 0;
    // All bytes were received: the writer has them and is nobody's from now on.
    virtual void onArrived(JobId job, std::uint64_t size) = 0;
    virtual void onEnded(JobId job, const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  CDownloadAttempt(CHttpLoop& loop, CWorkerPool& pool, ILog& log, StartOrder order,
                   IListener& listener);
  ~CDownloadAttempt();
  CDownloadAttempt(const CDownloadAttempt&) = delete;
  CDownloadAttempt& operator=(const CDownloadAttempt&) = delete;

  // May end the attempt at once.
  void begin();

  const std::shared_ptr<CPartialWriter>& writer() const { return writer_; }
  const std::shared_ptr<JobProgress>& progress() const { return order_.progress; }
  void discard();

 private:
  void fetch();
  void send();
  HttpRequest request() const;
  bool followRedirect(const HttpAnswer& answer);
  std::optional<ByteSpan> beginContent();
  void startOver();
  void judgeComplete();
  void judgeBody(const HttpAnswer& answer);
  void arrive(std::uint64_t size);
  void finish(AttemptOutcome outcome);
  void report(AttemptOutcome outcome);

  std::optional<ByteSpan> onHead(const HttpAnswer& head) override;
  void onFetched(const HttpAnswer& answer) override;
  void onReopened(CPartialFile::Found found, const DownloadResume& resume) override;
  void onWriterReady() override;
  void onWriterIdle() override;
  void onWriterFailed(const AttemptOutcome& outcome) override;
  void onCheckpoint() override { listener_.onCheckpoint(order_.job); }

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  ILog& log_;
  const StartOrder order_;
  IListener& listener_;

  std::shared_ptr<CPartialWriter> writer_;
  std::unique_ptr<CRangeFetch> fetch_;
  std::string url_;  // where it is asked for now; changes with a redirect
  int redirects_ = 0;
  bool startedOver_ = false;

  std::uint64_t there_ = 0;            // bytes from the beginning that need not be fetched
  std::string validator_;              // of the version they are of
  std::optional<std::uint64_t> size_;  // of that version
  FetchAsk ask_;
  std::optional<FetchPlan> plan_;          // once the answer's head is there
  std::optional<AttemptOutcome> refusal_;  // of an answer whose head is not what it should be
  std::optional<AttemptOutcome> ending_;   // to be reported once everything is written
};

}  // namespace zt_transfers
