#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "download/partial_writer.h"
#include "engine/attempt.h"
#include "http/http_exchange.h"
#include "http/throttle.h"

namespace zt_transfers {

// One request for bytes of a file, on their way into its partial file: as fast as the throttle
// and the disk allow.
//
// Thread: the loop's. Destroying it ends the request and hands over what has come.
class CRangeFetch final : public IHttpSink, public CThrottle::IUser {
 public:
  class IListener {
   public:
    // The head of the answer is there: which bytes follow, or nothing when they are no content.
    virtual std::optional<ByteSpan> onHead(const HttpAnswer& head) = 0;
    // The answer has ended. May destroy the fetch.
    virtual void onFetched(const HttpAnswer& answer) = 0;

   protected:
    ~IListener() = default;
  };

  // Throws std::invalid_argument for a request that cannot be sent.
  CRangeFetch(CHttpLoop& loop, const HttpRequest& request, CPartialWriter& writer,
              JobProgress& progress, IListener& listener);
  ~CRangeFetch();
  CRangeFetch(const CRangeFetch&) = delete;
  CRangeFetch& operator=(const CRangeFetch&) = delete;

  // After the writer was full.
  void resume() { exchange_->resumeBody(); }
  // Hands over what has come so far; `add`: something else follows at once.
  void flush();
  void add();

  // Where the next byte goes; nothing before the first one.
  std::optional<std::uint64_t> position() const {
    return begun_ ? std::optional(position_) : std::nullopt;
  }
  // More came than the head announced.
  bool tooLong() const { return tooLong_; }

 private:
  Write write(const HttpAnswer& head, const char* data, std::size_t size) override;
  void onThrottleOpen() override { exchange_->resumeBody(); }
  bool allowed(std::size_t size);
  void take(const char* data, std::size_t size);

  CHttpLoop& loop_;
  CPartialWriter& writer_;
  JobProgress& progress_;
  IListener& listener_;

  bool begun_ = false;
  bool tooLong_ = false;
  std::uint64_t position_ = 0;
  std::uint64_t end_ = 0;
  std::uint64_t credit_ = 0;  // bytes the throttle has granted
  CPartialWriter::Chunk chunk_;
  TimePoint chunkBegun_{};
  std::unique_ptr<CHttpExchange> exchange_;
};

}  // namespace zt_transfers
