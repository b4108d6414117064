#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "http/http_transport.h"
#include "http/redirect.h"
#include "http/throttle.h"
#include "upload/upload_dependencies.h"
#include "upload/upload_source.h"

namespace zt_transfers {

// One PUT whose body is a file or a span of one. CFileRequest::enter is the one function that
// changes its state:
//
//   kOpening ──► kSending ──► kEnded
//      ▲  │         │           ▲
//      │  └─────────┼───────────┘ the source or the listener ends it
//      └────────────┘ redirect or stale connection (from the first byte)
enum class FileRequestState : std::uint8_t {
  kOpening,  // the pool opens the source and reads its beginning
  kSending,  // the exchange is under way
  kEnded,    // neither source nor exchange is used any more
};

constexpr bool mayFollow(FileRequestState from, FileRequestState to) {
  return from != FileRequestState::kEnded && (from != to || from == FileRequestState::kOpening);
}

// When the source fails, the request is cut off before its last byte. Destruction ends it without
// a report.
//
// Thread: the loop's, on which the listener is called, too.
class CFileRequest final : public CUploadSource::IListener,
                           public IHttpBody,
                           public CThrottle::IUser {
 public:
  struct Order {
    ReadRequest source;
    std::string url;
    HttpHeaders headers;
    std::string proxy;
  };

  class IListener {
   public:
    // False ends the request without a further report.
    virtual bool onRequestOpened(CFileRequest& request, const SourceVersion& version) = 0;
    // sent() has changed.
    virtual void onRequestMoved(CFileRequest& request) = 0;
    // Each of these is the last call; the listener then retires the request.
    virtual void onRequestAnswered(CFileRequest& request, const HttpResponse& response) = 0;
    virtual void onRequestFailed(CFileRequest& request, const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  CFileRequest(const UploadDependencies& dependencies, Order order, IListener& listener);
  ~CFileRequest() { release(); }
  CFileRequest(const CFileRequest&) = delete;
  CFileRequest& operator=(const CFileRequest&) = delete;

  // The listener is not called from within.
  void begin() { enter(State::kOpening); }

  std::uint64_t size() const { return size_; }  // of the body in bytes, once it is open
  // Bytes of the body. A small body is sent together with the head and counts once it is answered.
  std::uint64_t sent() const { return sent_; }
  // Digest of the body, once it is answered; empty when no digest was asked for.
  const std::string& md5() const { return md5_; }

 private:
  using State = FileRequestState;

  void enter(State next);
  void openSource();
  void release();
  void send();
  void fail(const AttemptOutcome& outcome);
  void onResponse(const HttpResponse& response);

  void onSourceOpened(const SourceVersion& version) override;
  void onSourceReady() override;
  void onSourceFailed(const AttemptOutcome& outcome) override { fail(outcome); }
  Read read(char* to, std::size_t room, std::size_t& copied) override;
  std::string_view takeAll() override;
  bool rewind() override;
  void onThrottleOpen() override { exchange_->resumeBody(); }

  const UploadDependencies dependencies_;
  const Order order_;
  IListener& listener_;

  State state_ = State::kOpening;
  CRedirects redirects_;
  bool freshConnection_ = false;
  std::uint64_t size_ = 0;
  std::uint64_t sent_ = 0;
  std::string md5_;
  std::shared_ptr<CUploadSource> source_;
  std::unique_ptr<IHttpExchange> exchange_;
};

}  // namespace zt_transfers
