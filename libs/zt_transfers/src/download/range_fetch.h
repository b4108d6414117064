#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "base/log.h"
#include "download/partial_writer.h"
#include "download/response_plan.h"
#include "engine/attempt.h"
#include "http/http_exchange.h"
#include "http/throttle.h"

namespace zt_transfers {

// One request for bytes of a file, on their way into its partial file: as fast as the throttle
// and the disk allow, by way of redirects if need be.
//
// Thread: the loop's. Destroying it ends the request and hands over what has come.
class CRangeFetch final : public IHttpSink, public CThrottle::IUser {
 public:
  class IListener {
   public:
    // The head of the answer is there: whether its body is wanted. Must destroy nothing.
    virtual bool onHead(CRangeFetch& fetch, const FetchPlan& plan) = 0;
    // The answer has ended. May destroy the fetch.
    virtual void onFetched(CRangeFetch& fetch, const HttpResponse& response) = 0;

   protected:
    ~IListener() = default;
  };
  struct Dependencies {
    CHttpLoop& loop;
    ILog& log;
    CPartialWriter& writer;
    AttemptProgress& progress;
    IListener& listener;
  };

  static constexpr std::uint64_t kNoEnd = std::numeric_limits<std::int64_t>::max();

  // Asks with this request, to which the ask adds its headers; the file has `most` bytes at most.
  // Throws std::invalid_argument when it cannot be sent.
  CRangeFetch(const Dependencies& dependencies, HttpRequest request, RangeRequest rangeRequest,
              std::uint64_t most);
  ~CRangeFetch();
  CRangeFetch(const CRangeFetch&) = delete;
  CRangeFetch& operator=(const CRangeFetch&) = delete;

  // After the writer was full.
  void resume() { exchange_->resumeBody(); }
  // Hands over what has come so far; `add`: something else follows at once.
  void flush();
  void add();
  // Ends at `end`, before what was asked for does; somebody else fetches the rest.
  void stopAt(std::uint64_t end) { stop_ = end; }

  const RangeRequest& rangeRequest() const { return rangeRequest_; }
  // Once the head is there.
  const std::optional<FetchPlan>& plan() const { return plan_; }
  // Its body is bytes of the file.
  bool wanted() const { return wanted_; }
  // What is still to come of what it is to fetch; nobody may know its end.
  ByteSpan rest() const { return {position_, stop_}; }
  // It has ended where it was stopped.
  bool stopped() const { return stopped_; }
  // More came than the head announced.
  bool tooLong() const { return tooLong_; }

 private:
  void send();
  void judgeEnd(const HttpResponse& response);
  bool followRedirect(const HttpResponse& response);
  bool begin(const HttpResponse& head);
  Write write(const HttpResponse& head, const char* data, std::size_t size) override;
  void onThrottleOpen() override { exchange_->resumeBody(); }
  bool allowed(std::size_t size);
  void take(const char* data, std::size_t size);

  CHttpLoop& loop_;
  ILog& log_;
  CPartialWriter& writer_;
  AttemptProgress& progress_;
  IListener& listener_;
  const HttpRequest request_;
  const RangeRequest rangeRequest_;
  const std::uint64_t max_;
  std::string url_;  // where it is asked for now; changes with a redirect
  int redirects_ = 0;

  std::optional<FetchPlan> plan_;
  bool wanted_ = false;
  bool tooLong_ = false;
  bool stopped_ = false;
  std::uint64_t position_ = 0;
  std::uint64_t end_ = 0;     // of the body
  std::uint64_t stop_ = 0;    // of what is to be fetched
  std::uint64_t credit_ = 0;  // bytes the throttle has granted
  Chunk chunk_;
  TimePoint chunkBegun_{};
  std::unique_ptr<CHttpExchange> exchange_;
};

}  // namespace zt_transfers
