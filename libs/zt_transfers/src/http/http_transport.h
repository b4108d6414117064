#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/executor.h"
#include "base/retired.h"
#include "http/http_response.h"
#include "http/patience.h"
#include "http/redirect.h"
#include "http/throttle.h"

namespace zt_transfers {

struct HttpRequest {
  std::string method = "PUT";
  std::string url{};
  HttpHeaders headers{};
  std::uint64_t bodySize = 0;      // bytes; sent as Content-Length if the request has a body
  std::uint64_t responseSize = 0;  // bytes that are expected at most; 0: unknown
  std::string proxy{};             // empty: the system's
  HttpPatience patience{};
  bool freshConnection = false;  // uses none that was kept open
};

// The source of a request's body. Thread: the loop's.
class IHttpBody {
 public:
  enum class Read { kData, kLater, kBroken };

  // Copies up to `room` bytes to `to` and gives their number in `copied`. After kLater the body
  // calls IHttpExchange::resumeBody when it has more; kBroken ends the exchange.
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
    kLater,       // the same bytes are passed again after IHttpExchange::resumeBody
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
// Thread: the transport's.
class IHttpExchange {
 public:
  virtual ~IHttpExchange() = default;
  virtual void resumeBody() = 0;
};

// Carries out HTTP exchanges: the seam between transfers and the network.
//
// Thread: post and wake on any; everything else on the transport's own, which also runs posted
// tasks and all callbacks.
class IHttpTransport : public IExecutor {
 public:
  using Done = std::function<void(HttpResponse)>;

  // Sends a request with a body, or one whose response has a body; either must outlive the
  // exchange. `done` is never called from within; its receiver retires the exchange. Throws
  // std::invalid_argument for a request that cannot be sent because a header is malformed.
  virtual std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpBody& body,
                                              Done done) = 0;
  virtual std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpSink& sink,
                                              Done done) = 0;

  // Has the transport ask for work soon.
  virtual void wake() = 0;
  virtual CThrottle& throttle() = 0;
  virtual const IClock& clock() const = 0;

  // Keeps an object that has finished until the end of the transport's round, when none of its
  // functions is on the stack any more.
  template <typename Object>
  void retire(std::unique_ptr<Object> object) {
    retired().add(std::move(object));
  }

 protected:
  ~IHttpTransport() = default;
  virtual CRetired& retired() = 0;
};

}  // namespace zt_transfers
