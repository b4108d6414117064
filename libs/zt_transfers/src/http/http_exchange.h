#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "http/curl_handles.h"
#include "http/http_loop.h"
#include "http/http_transport.h"

namespace zt_transfers {

// An exchange over libcurl. Thread: the loop's.
class CHttpExchange final : public IHttpExchange {
 public:
  using Done = IHttpTransport::Done;

  static constexpr std::chrono::seconds kConnectLimit{30};

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
  bool stalledAt(TimePoint now);

 private:
  void setUp(const HttpRequest& request);
  void setUpBody(const HttpRequest& request);
  void setUpSmallBody(const HttpRequest& request, std::string_view content);
  void setUpHeaders(const HttpRequest& request);
  void takeHeaderLine(std::string_view line);
  std::size_t takeContent(const char* data, std::size_t size);
  std::size_t takeIntoResponse(const char* data, std::size_t size);

  static std::size_t readBody(char* to, std::size_t size, std::size_t count, void* self);
  static int seekBody(void* self, curl_off_t offset, int origin);
  static std::size_t takeHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* self);

  CHttpLoop& loop_;
  const std::chrono::seconds timeout_;
  IHttpBody* const body_;  // this or the sink is null
  IHttpSink* sink_;
  Done done_;
  CurlEasy easy_;
  CurlList headers_;
  HttpResponse response_;
  char errorText_[CURL_ERROR_SIZE] = "";
  bool bodyPaused_ = false;
  bool bodyCut_ = false;  // the response's body exceeds the limit of HttpResponse
  std::uint64_t movedBytes_ = 0;
  TimePoint movedAt_{};
};

}  // namespace zt_transfers
