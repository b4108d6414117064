#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/log.h"
#include "http/http_transport.h"
#include "http/redirect.h"

namespace zt_transfers {

// A request whose body, if any, and whose response are texts in memory. Follows redirects.
// Destruction ends it without a report.
//
// Thread: the loop's. `done` is never called from within the constructor; its receiver retires the
// request.
class CTextRequest final : public IHttpBody, public IHttpSink {
 public:
  static constexpr std::size_t kMaxText = std::size_t{4} * 1024 * 1024;  // bytes of a response

  struct Request {
    std::string method;  // POST has a body, the others have none
    std::string url;
    HttpHeaders headers;
    std::string body{};
    std::string proxy{};
    HttpPatience patience{};
    int maxRedirects = CRedirects::kMax;
  };
  using Done = std::function<void(const HttpResponse&)>;

  // Throws std::invalid_argument for a request that cannot be sent.
  CTextRequest(IHttpTransport& loop, ILog& log, Request request, Done done);

  // Another owner takes over.
  void setDone(Done done) { done_ = std::move(done); }

 private:
  void send();
  void onResponse(HttpResponse response);

  Read read(char* to, std::size_t room, std::size_t& copied) override;
  bool rewind() override;
  Write write(const HttpResponse& head, const char* data, std::size_t size) override;

  IHttpTransport& loop_;
  ILog& log_;
  const Request request_;
  Done done_;
  CRedirects redirects_;
  std::size_t sent_ = 0;
  std::string text_;
  std::unique_ptr<IHttpExchange> exchange_;
};

}  // namespace zt_transfers
