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

namespace zt_transfers {

// How long nothing may move.
inline constexpr std::chrono::seconds kDefaultTimeout{60};

struct HttpRequest {
  std::string method = "PUT";
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;
  std::uint64_t bodySize = 0;      // bytes; always sent as Content-Length where there is a body
  std::uint64_t responseSize = 0;  // bytes that are expected, at most; 0: not known
  std::string proxy;               // empty: the system's
  std::string userAgent;
  std::chrono::seconds timeout = kDefaultTimeout;
};

// Where a request's body comes from. Thread: the loop's.
class IHttpBody {
 public:
  enum class Read { kData, kLater, kBroken };

  // Copies up to `room` bytes to `to` and gives their number in `copied`. After kLater the body
  // calls CHttpExchange::resumeBody when it has more; kBroken ends the exchange.
  virtual Read read(char* to, std::size_t room, std::size_t& copied) = 0;
  // All of it, where it is in memory: goes out together with the head, and must stay there until
  // the exchange is gone. Nothing: it is read.
  virtual std::string_view takeAll() { return {}; }
  // Begins again from the first byte, if it can: libcurl needs that when a connection that was
  // kept open turns out to be dead.
  virtual bool rewind() = 0;

 protected:
  ~IHttpBody() = default;
};

// Where an answer's body goes. Thread: the loop's.
class IHttpSink {
 public:
  enum class Write {
    kTaken,
    kLater,       // the same bytes come again after CHttpExchange::resumeBody
    kToResponse,  // they are no content: they go to HttpResponse::body, and none after them comes
                  // here
    kBroken,      // ends the exchange
  };

  // `head` has the status and the headers.
  virtual Write write(const HttpResponse& head, const char* data, std::size_t size) = 0;

 protected:
  ~IHttpSink() = default;
};

// One request and its answer. Destroying it before the answer ends it silently.
//
// Thread: the loop's. `done` is called from the loop, never from within begin, and may destroy
// the exchange.
class CHttpExchange {
 public:
  using Done = std::function<void(HttpResponse)>;

  static constexpr std::chrono::seconds kConnectLimit{30};

  // A request with a body, or one whose answer has a body; either must outlive the exchange.
  // Throws std::invalid_argument for a request that cannot be sent (a header that is none).
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
  bool bodyCut_ = false;  // more than is kept of an answer that is no content
  std::uint64_t movedBytes_ = 0;
  TimePoint movedAt_{};
};

}  // namespace zt_transfers
