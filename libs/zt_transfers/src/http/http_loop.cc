#include "http/http_loop.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

#include "base/this_thread.h"
#include "http/http_exchange.h"
#include "http/stall_check.h"

namespace zt_transfers {
namespace {

constexpr std::chrono::seconds kStallCheckInterval{1};
constexpr long kConnectionsKept = 64;

// Connections survive shorter ones.
constexpr std::chrono::seconds kNoticedSleep{5};
// libcurl does not reuse connections that were idle for longer than this anyway.
constexpr std::chrono::seconds kLongestIdle{118};

CURLM* newMulti() {
  // Process-wide and never undone, because the program may use libcurl as well.
  static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
  CURLM* multi = ready == CURLE_OK ? curl_multi_init() : nullptr;
  if (multi == nullptr) {
    throw std::runtime_error("libcurl could not be initialised");
  }
  curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, kConnectionsKept);
  return multi;
}

}  // namespace

CHttpLoop::CHttpLoop(std::string name, const IClock& clock)
    : name_(std::move(name)), clock_(clock), multi_(newMulti()) {}

void CHttpLoop::start(Tick tick, std::function<void()> last) {
  {
    const CMutexLock lock(mutex_);
    if (running_) {
      return;
    }
    running_ = true;
  }
  thread_ = std::thread([this, tick = std::move(tick), last = std::move(last)] {
    loopThread_ = std::this_thread::get_id();
    nameThisThread(name_);
    run(tick);
    last();
    retired_.clear();
    assert(exchanges_.empty());
    idle_.clear();
    loopThread_ = std::thread::id();  // another thread can get the same
  });
}

void CHttpLoop::stop() {
  {
    const CMutexLock lock(mutex_);
    running_ = false;
  }
  wake();
  if (thread_.joinable()) {
    thread_.join();
  }
  std::vector<std::function<void()>> dropped;
  const CMutexLock lock(mutex_);
  dropped.swap(tasks_);
}

std::unique_ptr<IHttpExchange> CHttpLoop::send(const HttpRequest& request, IHttpBody& body,
                                               Done done) {
  return std::make_unique<CHttpExchange>(*this, request, &body, nullptr, std::move(done));
}

std::unique_ptr<IHttpExchange> CHttpLoop::send(const HttpRequest& request, IHttpSink& sink,
                                               Done done) {
  return std::make_unique<CHttpExchange>(*this, request, nullptr, &sink, std::move(done));
}

void CHttpLoop::wake() {
  if (std::this_thread::get_id() == loopThread_.load()) {
    again_ = true;
  } else if (!woken_.exchange(true) && sleeping_) {
    curl_multi_wakeup(multi_.get());
  }
}

void CHttpLoop::post(std::function<void()> task) {
  {
    const CMutexLock lock(mutex_);
    if (!running_) {
      return;
    }
    tasks_.push_back(std::move(task));
    if (tasks_.size() > 1) {
      return;  // the first task's thread has woken the loop
    }
  }
  wake();
}

void CHttpLoop::assertOnLoop() const {
  assert(std::this_thread::get_id() == loopThread_.load());
}

void CHttpLoop::run(const Tick& tick) {
  slept_ = clock_.slept();
  woke_.reset();
  for (;;) {
    noticeSleep(clock_.now());  // before anything is begun
    if (!runTasks()) {
      return;
    }
    std::optional<TimePoint> due = tick();
    throttle_.serve(clock_.now());
    int active = 0;
    if (!exchanges_.empty()) {
      curl_multi_perform(multi_.get(), &active);
    }
    const bool finished = finishExchanges();
    const bool stalled = endStalled(clock_.now());
    retired_.clear();  // before the wait, as it can post tasks
    // Only now is it known what the round has changed.
    if (const auto open = throttle_.nextDue(clock_.now()); open && (!due || *open < *due)) {
      due = open;
    }
    waitForTraffic(due, finished || stalled || again_);
  }
}

// False when the loop is to end.
bool CHttpLoop::runTasks() {
  // From here on every wake-up means a new task.
  woken_.exchange(false);
  again_ = false;
  std::vector<std::function<void()>> tasks;
  {
    const CMutexLock lock(mutex_);
    if (!running_) {
      return false;
    }
    tasks.swap(tasks_);
  }
  for (const auto& task : tasks) {
    task();
  }
  return true;
}

bool CHttpLoop::finishExchanges() {
  bool any = false;
  int queued = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &queued)) {
    if (message->msg != CURLMSG_DONE) {
      continue;
    }
    void* exchange = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &exchange);
    any = true;
    // The message is invalid once the exchange has removed its handle.
    const CURLcode code = message->data.result;
    static_cast<CHttpExchange*>(exchange)->finish(code);
  }
  return any;
}

// Returns whether there was any: then something new may be due.
bool CHttpLoop::endStalled(TimePoint now) {
  if (now - stallsChecked_ < kStallCheckInterval) {
    return false;
  }
  stallsChecked_ = now;
  const auto stalled = stalledAmong(exchanges_, connections_, now);
  for (CHttpExchange* exchange : stalled) {
    // The end of one request for a file may have ended the others.
    if (exchanges_.count(exchange) != 0) {
      exchange->finish(CURLE_OPERATION_TIMEDOUT);
    }
  }
  return !stalled.empty();
}

// Connections that were open when the machine went to sleep are probably dead, without any notice.
void CHttpLoop::noticeSleep(TimePoint now) {
  const Duration slept = clock_.slept();
  if (slept - slept_ >= kNoticedSleep) {
    woke_ = now;
    stallsChecked_ = {};  // an exchange that already waited for a minute does not wait for another
  }
  slept_ = slept;
}

// Connections from before the machine slept are not reused.
void CHttpLoop::avoidDeadConnections(CURL* easy) {
  if (!woke_) {
    return;
  }
  const auto awake = std::chrono::floor<std::chrono::seconds>(clock_.now() - *woke_);
  if (awake > kLongestIdle) {
    woke_.reset();
  } else if (awake < std::chrono::seconds(2)) {
    curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
  } else {
    curl_easy_setopt(easy, CURLOPT_MAXAGE_CONN, static_cast<long>(awake.count() - 1));
  }
}

void CHttpLoop::waitForTraffic(std::optional<TimePoint> due, bool atOnce) {
  // An idle thread sleeps until it is woken. The wait's clock stops while the machine sleeps, so a
  // wait for a point in time must be short.
  const bool idle = exchanges_.empty() && !due;
  Duration limit = idle ? Duration(std::chrono::hours(1)) : kStallCheckInterval;
  if (due) {
    limit = std::clamp<Duration>(*due - clock_.now(), Duration::zero(), limit);
  }
  if (atOnce) {
    limit = Duration::zero();
  }
  sleeping_ = true;
  // A call before that has not woken the thread.
  const auto milliseconds =
      woken_ ? 0 : std::chrono::ceil<std::chrono::milliseconds>(limit).count();
  curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(milliseconds), nullptr);
  sleeping_ = false;
}

CurlEasy CHttpLoop::takeEasy() {
  if (!idle_.empty()) {
    CurlEasy easy = std::move(idle_.back());
    idle_.pop_back();
    return easy;
  }
  CurlEasy easy(curl_easy_init());
  if (!easy) {
    throw std::bad_alloc();
  }
  return easy;
}

void CHttpLoop::giveBack(CurlEasy easy) {
  if (easy) {
    curl_easy_reset(easy.get());
    idle_.push_back(std::move(easy));
  }
}

void CHttpLoop::add(CHttpExchange& exchange) {
  curl_easy_setopt(exchange.easy(), CURLOPT_PRIVATE, &exchange);
  connections_.observe(exchange.easy());
  avoidDeadConnections(exchange.easy());
  if (curl_multi_add_handle(multi_.get(), exchange.easy()) != CURLM_OK) {
    throw std::bad_alloc();
  }
  exchanges_.insert(&exchange);
}

void CHttpLoop::remove(CHttpExchange& exchange) {
  if (exchanges_.erase(&exchange) != 0) {
    curl_multi_remove_handle(multi_.get(), exchange.easy());
  }
}

}  // namespace zt_transfers
