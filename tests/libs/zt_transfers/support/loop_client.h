#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/clock.h"
#include "http/http_loop.h"

namespace zt_transfers::test {

// Of a machine that a test lets sleep.
class CSleepyClock : public IClock {
 public:
  TimePoint now() const override { return std::chrono::steady_clock::now() + slept(); }
  std::int64_t secondsSince1970() const override { return 0; }
  Duration slept() const override { return Duration(slept_.load()); }
  void sleep(Duration time) { slept_ += time.count(); }

 private:
  std::atomic<Duration::rep> slept_{0};
};

// Sends requests over a loop of its own. Thread: the test's.
class CLoopClient {
 public:
  explicit CLoopClient(CHttpLoop::Tick tick = [] { return std::nullopt; }) {
    loop.start(std::move(tick), [this] { running_.clear(); });
  }
  ~CLoopClient() { loop.stop(); }

  // `ended` is called on the loop's thread.
  std::future<HttpResponse> send(
      HttpRequest request, const std::string& content = "", std::function<void()> ended = [] {}) {
    auto running = std::make_shared<Running>();
    running->request = std::move(request);
    running->request.bodySize = content.size();
    running->content = content;
    running->ended = std::move(ended);
    auto response = running->promise.get_future();
    loop.post([this, running] { begin(running); });
    return response;
  }
  std::future<HttpResponse> get(const std::string& url, const HttpPatience& patience = {}) {
    return send({.method = "GET", .url = url, .responseSize = 1000, .patience = patience});
  }
  std::future<HttpResponse> put(const std::string& url, const std::string& content,
                                const HttpPatience& patience = {}) {
    return send({.url = url, .patience = patience}, content);
  }

  CSleepyClock clock;
  std::atomic<bool> keepsEnded = false;  // exchanges, until the end
  CHttpLoop loop{"zt-net-test", clock};

 private:
  struct Running final : public IHttpBody, public IHttpSink {
    Read read(char* to, std::size_t room, std::size_t& copied) override {
      copied = std::min(room, content.size() - sent);
      std::memcpy(to, content.data() + sent, copied);
      sent += copied;
      return Read::kData;
    }
    bool rewind() override {
      sent = 0;
      return true;
    }
    Write write(const HttpResponse&, const char*, std::size_t) override {
      return Write::kToResponse;
    }

    HttpRequest request;
    std::string content;
    std::size_t sent = 0;
    std::function<void()> ended;
    std::promise<HttpResponse> promise;
    std::unique_ptr<IHttpExchange> exchange;
  };

  void begin(const std::shared_ptr<Running>& running) {
    running_.push_back(running);
    const auto done = [this, self = running.get()](const HttpResponse& response) {
      if (!keepsEnded) {
        loop.retire(std::move(self->exchange));
      }
      self->ended();
      self->promise.set_value(response);
    };
    running->exchange = running->request.method == "PUT"
                            ? loop.send(running->request, static_cast<IHttpBody&>(*running), done)
                            : loop.send(running->request, static_cast<IHttpSink&>(*running), done);
  }

  std::list<std::shared_ptr<Running>> running_;  // the loop's
};

}  // namespace zt_transfers::test
