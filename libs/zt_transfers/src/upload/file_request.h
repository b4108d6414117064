#pragma once

#include <memory>
#include <string>

#include "http/http_exchange.h"
#include "http/request_place.h"
#include "http/throttle.h"
#include "upload/upload_source.h"
#include "upload/upload_tools.h"

namespace zt_transfers {

// One PUT whose body is a file or a span of one:
//
//   opening ──► sending ──► answered
//      ▲           │
//      └───────────┘ redirect (a new place, from the first byte)
//
// A problem with the source ends it from every state; the request is then cut off before its last
// byte. Destruction ends it without an answer.
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

  // Each call but onRequestMoved may destroy the request.
  class IListener {
   public:
    // False when it is not to be sent.
    virtual bool onRequestOpened(CFileRequest& request, const SourceVersion& version) = 0;
    // sent() has changed.
    virtual void onRequestMoved(CFileRequest& request) = 0;
    virtual void onRequestAnswered(CFileRequest& request, const HttpResponse& response) = 0;
    // It cannot be sent; `reason` is for the log.
    virtual void onRequestFailed(CFileRequest& request, const Trouble& trouble) = 0;

   protected:
    ~IListener() = default;
  };

  CFileRequest(const UploadDependencies& dependencies, Order order, IListener& listener);
  ~CFileRequest();
  CFileRequest(const CFileRequest&) = delete;
  CFileRequest& operator=(const CFileRequest&) = delete;

  // No call comes from within.
  void begin();

  // Whether a file of this size is not read.
  bool statOnly(std::uint64_t size) const { return size >= order_.source.statOnlyFrom; }
  std::uint64_t size() const { return size_; }  // of the body, once it is open
  // Bytes of it; a small body, which goes out with the head, counts once it was answered.
  std::uint64_t sent() const { return sent_; }
  // Of what was sent, once it was answered; empty when not asked for.
  const std::string& md5() const { return source_->md5(); }

 private:
  void close();
  void onResponse(const HttpResponse& response);

  void onSourceOpened(const SourceVersion& version) override;
  void onSourceReady() override;
  void onSourceFailed(const Trouble& trouble) override;
  Read read(char* to, std::size_t room, std::size_t& copied) override;
  std::string_view takeAll() override;
  bool rewind() override;
  void onThrottleOpen() override { exchange_->resumeBody(); }

  const UploadDependencies dependencies_;
  const Order order_;
  IListener& listener_;

  CRequestPlace place_;
  std::uint64_t size_ = 0;
  std::uint64_t sent_ = 0;
  std::shared_ptr<CUploadSource> source_;
  std::unique_ptr<CHttpExchange> exchange_;
};

}  // namespace zt_transfers
