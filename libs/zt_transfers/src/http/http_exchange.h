#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "http/curl_handles.h"
#include "http/http_loop.h"
#include "http/http_transport.h"
#include "http/liveness.h"

namespace zt_transfers {

// An exchange over libcurl. Thread: the loop's.
class CHttpExchange final : public IHttpExchange {
 public:
  using Done = IHttpTransport::Done;

  // Either the body or the sink is null; see IHttpTransport::send.
  CHttpExchange(CHttpLoop& loop, const HttpRequest& request, IHttpBody* body, IHttpSink* sink,
                Done done);
  ~CHttpExchange() override;
  CHttpExchange(const CHttpExchange&) = delete;
  CHttpExchange& operator=(const CHttpExchange&) = delete;

  void resumeBody() override;

  // For CHttpLoop.
  CURL* easy() const { return easy_.get(); }
  void finish(CURLcode code);
  // False when the exchange has lost its patience. `unconfirmed`: bytes that this exchange alone
  // has in its connection's queue.
  bool check(std::uint64_t unconfirmed, TimePoint now);
  void noteStalled() { response_.stalled = true; }
  const CLiveness& liveness() const { return liveness_; }

 private:
  void setUp(const HttpRequest& request);
  void setUpBody(const HttpRequest& request);
  void setUpSmallBody(const HttpRequest& request, std::string_view content);
  void setUpHeaders(const HttpRequest& request);
  bool mayShareConnection(const HttpRequest& request) const;
  bool isConnected() const;
  bool isStale(CURLcode code) const;
  void takeHeaderLine(std::string_view line);
  std::size_t takeContent(const char* data, std::size_t size);
  std::size_t takeIntoResponse(const char* data, std::size_t size);

  static std::size_t readBody(char* to, std::size_t size, std::size_t count, void* self);
  static int seekBody(void* self, curl_off_t offset, int origin);
  static std::size_t takeHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* self);

  CHttpLoop& loop_;
  const HttpPatience patience_;
  const std::uint64_t bodySize_;
  IHttpBody* const body_;  // this or the sink is null
  IHttpSink* sink_;
  Done done_;
  CurlEasy easy_;
  CurlList headers_;
  HttpResponse response_;
  char errorText_[CURL_ERROR_SIZE] = "";
  bool bodyPaused_ = false;
  bool heldSinceCheck_ = false;  // the body was paused at some time since the last check
  bool bodyCut_ = false;         // the response's body exceeds the limit of HttpResponse
  bool responseBegun_ = false;
  std::uint64_t responseSize_ = 0;  // bytes of the body that came, kept or not
  CLiveness liveness_;
};

}  // namespace zt_transfers
