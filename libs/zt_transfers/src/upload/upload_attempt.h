#pragma once

#include <functional>
#include <memory>
#include <string>

#include "engine/attempt.h"
#include "http/http_exchange.h"
#include "http/redirect.h"
#include "http/throttle.h"
#include "log/log.h"
#include "upload/upload_source.h"

namespace zt_transfers {

// One attempt to send one file with one PUT:
//
//   opening ──► sending ──► answered ──► done
//      ▲           │            │
//      └── redirect (a new place, from the first byte) ◄──┘
//
// A problem with the source ends it from every state; the request is then cut off before its
// last byte. Destruction ends it without an answer.
//
// Thread: the loop's. `done` may destroy the attempt.
class CUploadAttempt final : public CUploadSource::IListener,
                             public IHttpBody,
                             public CThrottle::IUser {
 public:
  // The outcome is not part of the attempt and outlives it.
  using Done = std::function<void(const AttemptOutcome&)>;

  CUploadAttempt(CHttpLoop& loop, CWorkerPool& pool, ILog& log, StartOrder order, Done done);
  ~CUploadAttempt();
  CUploadAttempt(const CUploadAttempt&) = delete;
  CUploadAttempt& operator=(const CUploadAttempt&) = delete;

  // May end the attempt at once.
  void begin();

 private:
  void openSource();
  void closeRequest();
  void onAnswer(const HttpAnswer& answer);
  bool followRedirect(const HttpAnswer& answer);
  void finish(const AttemptOutcome& outcome);

  void onSourceOpened(std::uint64_t size) override;
  void onSourceReady() override;
  void onSourceFailed(const std::string& reason) override;
  Read read(char* to, std::size_t room, std::size_t& copied) override;
  bool rewind() override;
  void onThrottleOpen() override;

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  ILog& log_;
  const StartOrder order_;
  const Done done_;

  std::string path_;
  std::string url_;  // where it is sent to now; changes with a redirect
  HttpHeaders headers_;
  int redirects_ = 0;
  std::uint64_t size_ = 0;
  std::uint64_t sent_ = 0;
  std::shared_ptr<CUploadSource> source_;
  std::unique_ptr<CHttpExchange> exchange_;
};

}  // namespace zt_transfers
