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
#include "http/http_transport.h"
#include "http/redirect.h"
#include "http/throttle.h"

namespace zt_transfers {

// One request for a range of a file, whose bytes go to the partial file as fast as the throttle and
// the disk allow. Follows redirects.
//
// Thread: the loop's. Destruction ends the request; see end().
class CRangeFetch final : public IHttpSink, public CThrottle::IUser {
 public:
  class IListener {
   public:
    // The head of the response has arrived. Returns whether the body is wanted. Must not end the
    // fetch.
    virtual bool onHead(CRangeFetch& fetch, const FetchPlan& plan) = 0;
    // The response has ended. This is the last call; the listener then ends and retires the fetch.
    virtual void onFetched(CRangeFetch& fetch, const HttpResponse& response) = 0;

   protected:
    ~IListener() = default;
  };
  struct Dependencies {
    IHttpTransport& loop;
    ILog& log;
    CPartialWriter& writer;
    AttemptProgress& progress;
    IListener& listener;
  };

  static constexpr std::uint64_t kNoEnd = std::numeric_limits<std::int64_t>::max();

  // Sends `request` with the headers of the range added; the file has `maxSize` bytes at most.
  // Throws std::invalid_argument for a request that cannot be sent.
  CRangeFetch(const Dependencies& dependencies, HttpRequest request, RangeRequest rangeRequest,
              std::uint64_t maxSize);
  ~CRangeFetch() { end(); }
  CRangeFetch(const CRangeFetch&) = delete;
  CRangeFetch& operator=(const CRangeFetch&) = delete;

  // Ends the request without a report and passes received bytes on.
  void end();
  // The writer takes bytes again.
  void resume();
  // Passes received bytes on without starting to write: more follows at once.
  void add();
  // Ends at `end` already; another request fetches what follows.
  void stopAt(std::uint64_t end) { stop_ = end; }

  const RangeRequest& rangeRequest() const { return rangeRequest_; }
  // Set once the head has arrived.
  const std::optional<FetchPlan>& plan() const { return plan_; }
  // Whether the body consists of bytes of the file.
  bool wanted() const { return wanted_; }
  // The part of the range that has not arrived; kNoEnd while its end is unknown.
  ByteSpan remaining() const { return {position_, stop_}; }
  // Whether it has ended where stopAt said.
  bool stopped() const { return stopped_; }
  // Whether more bytes came than the head announced.
  bool tooLong() const { return tooLong_; }

 private:
  void send();
  void judgeEnd(const HttpResponse& response);
  bool begin(const HttpResponse& head);
  Write write(const HttpResponse& head, const char* data, std::size_t size) override;
  void onThrottleOpen() override { resume(); }
  bool allowed(std::size_t size);
  void take(const char* data, std::size_t size);
  void flush();

  IHttpTransport& loop_;
  ILog& log_;
  CPartialWriter& writer_;
  AttemptProgress& progress_;
  IListener& listener_;
  const HttpRequest request_;
  const RangeRequest rangeRequest_;
  const std::uint64_t maxSize_;
  CRedirects redirects_;

  std::optional<FetchPlan> plan_;
  bool wanted_ = false;
  bool tooLong_ = false;
  bool stopped_ = false;
  std::uint64_t position_ = 0;
  std::uint64_t end_ = 0;     // of the body
  std::uint64_t stop_ = 0;    // end of the range that this request fetches
  std::uint64_t credit_ = 0;  // bytes that the throttle has granted
  Chunk chunk_;
  TimePoint chunkBegun_{};
  std::unique_ptr<IHttpExchange> exchange_;
};

}  // namespace zt_transfers
