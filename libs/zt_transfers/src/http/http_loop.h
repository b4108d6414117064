#pragma once

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/clock.h"
#include "base/mutex.h"
#include "http/connections.h"
#include "http/curl_handles.h"
#include "http/http_transport.h"

namespace zt_transfers {

class CHttpExchange;

// One thread that carries HTTP exchanges over libcurl's multi interface, whose connections they
// share.
//
// Thread: start, stop and setUserAgent on the owner's; post and wake on any; everything else on the
// loop's own thread, which also runs posted tasks and all callbacks.
class CHttpLoop final : public IHttpTransport {
 public:
  // Called once a round; returns when the next round must start at the latest.
  using Tick = std::function<std::optional<TimePoint>()>;

  CHttpLoop(std::string name, const IClock& clock);
  ~CHttpLoop() { stop(); }
  CHttpLoop(const CHttpLoop&) = delete;
  CHttpLoop& operator=(const CHttpLoop&) = delete;

  // `last` runs on the loop's thread when it ends and must destroy all exchanges.
  void start(Tick tick, std::function<void()> last);
  // Joins the thread. Posted tasks that have not run are dropped.
  void stop();

  std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpBody& body,
                                      Done done) override;
  std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpSink& sink,
                                      Done done) override;
  void wake() override;
  // The task is dropped when the loop does not run.
  void post(std::function<void()> task) override;

  // Sent with every request. Call it while the loop does not run.
  void setUserAgent(std::string userAgent) { userAgent_ = std::move(userAgent); }
  const std::string& userAgent() const { return userAgent_; }

  void assertOnLoop() const;
  CThrottle& throttle() override { return throttle_; }
  const IClock& clock() const override { return clock_; }

  // For CHttpExchange.
  CurlEasy takeEasy();
  void giveBack(CurlEasy easy);
  void add(CHttpExchange& exchange);
  void remove(CHttpExchange& exchange);

 private:
  CRetired& retired() override { return retired_; }
  void run(const Tick& tick);
  bool runTasks();
  bool finishExchanges();
  bool endStalled(TimePoint now);
  void noticeSleep(TimePoint now);
  void avoidDeadConnections(CURL* easy);
  void waitForTraffic(std::optional<TimePoint> due, bool atOnce);

  const std::string name_;
  std::string userAgent_;  // constant while the loop runs
  const IClock& clock_;
  CConnections connections_;  // outlives multi_, which closes them
  const CurlMulti multi_;
  std::thread thread_;
  std::atomic<std::thread::id> loopThread_{};
  std::atomic<bool> sleeping_ = false;  // only then it has to be woken
  std::atomic<bool> woken_ = false;     // and has not noticed it yet

  CMutex mutex_;
  std::vector<std::function<void()>> tasks_ GUARDED_BY(mutex_);
  bool running_ GUARDED_BY(mutex_) = false;

  // The loop's thread only.
  CThrottle throttle_;
  std::set<CHttpExchange*> exchanges_;
  std::vector<CurlEasy> idle_;
  TimePoint stallsChecked_{};
  Duration slept_{};               // until the last round
  std::optional<TimePoint> woke_;  // when the machine last woke up
  bool again_ = false;             // another round is due at once
  CRetired retired_;
};

}  // namespace zt_transfers
