#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "http/curl_handles.h"
#include "http/http_loop.h"
#include "http/http_response.h"
#include "http/redirect.h"

namespace zt_transfers {

// The longest time without traffic.
inline constexpr std::chrono::seconds kDefaultTimeout{60};

struct HttpRequest {
  std::string method = "PUT";
  std::string url;
  HttpHeaders headers;
  std::uint64_t bodySize = 0;      // bytes; sent as Content-Length if the request has a body
  std::uint64_t responseSize = 0;  // bytes that are expected at most; 0: unknown
  std::string proxy;               // empty: the system's
  std::chrono::seconds timeout = kDefaultTimeout;
};

// The source of a request's body. Thread: the loop's.
class IHttpBody {
 public:
  enum class Read { kData, kLater, kBroken };

  // Copies up to `room` bytes to `to` and gives their number in `copied`. After kLater the body
  // calls CHttpExchange::resumeBody when it has more; kBroken ends the exchange.
  virtual Read read(char* to, std::size_t room, std::size_t& copied) = 0;
  // The whole body if it is in memory: it is sent together with the head and must stay valid until
  // the exchange is destroyed. Empty: the body is read.
  virtual std::string_view takeAll() { return {}; }
  // Starts again with the first byte and returns whether it can: libcurl needs that when a
  // connection that was kept open turns out to be dead.
  virtual bool rewind() = 0;

 protected:
  ~IHttpBody() = default;
};

// The receiver of a response's body. Thread: the loop's.
class IHttpSink {
 public:
  enum class Write {
    kTaken,
    kLater,       // the same bytes are passed again after CHttpExchange::resumeBody
    kToResponse,  // these bytes and all that follow go to HttpResponse::body instead
    kBroken,      // ends the exchange
  };

  // `head` has the status and the headers.
  virtual Write write(const HttpResponse& head, const char* data, std::size_t size) = 0;

 protected:
  ~IHttpSink() = default;
};

// One request and its response, without redirects. Destruction before the response ends it without
// a report.
//
// Thread: the loop's. `done` is never called from within the constructor; its receiver retires the
// exchange.
class CHttpExchange {
 public:
  using Done = std::function<void(HttpResponse)>;

  static constexpr std::chrono::seconds kConnectLimit{30};

  // A request with a body, or one whose response has a body; either must outlive the exchange.
  // Throws std::invalid_argument for a request that cannot be sent because a header is malformed.
  CHttpExchange(CHttpLoop& loop, const HttpRequest& request, IHttpBody& body, Done done);
  CHttpExchange(CHttpLoop& loop, const HttpRequest& request, IHttpSink& sink, Done done);
  ~CHttpExchange();
  CHttpExchange(const CHttpExchange&) = delete;
  CHttpExchange& operator=(const CHttpExchange&) = delete;

  void resumeBody();

  // For CHttpLoop.
  CURL* easy() const { return easy_.get(); }
  void finish(CURLcode code);
  bool stalledAt(TimePoint now);

 private:
  CHttpExchange(CHttpLoop& loop, const HttpRequest& request, IHttpBody* body, IHttpSink* sink,
                Done done);
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
