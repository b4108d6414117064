#include "http/http_loop.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

#include "base/thread_name.h"
#include "http/http_exchange.h"

namespace zt_transfers {
namespace {

constexpr std::chrono::seconds kStallCheckInterval{1};
constexpr long kConnectionsKept = 64;

// Shorter ones do connections no harm.
constexpr std::chrono::seconds kNoticedSleep{5};
// libcurl takes no connection again that was idle for longer than this anyway.
constexpr std::chrono::seconds kLongestIdle{118};

CURLM* newMulti() {
  // Process-wide and for good; the manager's library users may use libcurl as well.
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
      return;  // who posted the first has woken the loop
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
    checkStalls(clock_.now());
    retired_.clear();  // before the wait, as it can post tasks
    if (const auto open = throttle_.nextDue(clock_.now()); open && (!due || *open < *due)) {
      due = open;
    }
    waitForTraffic(due, finished || again_);
  }
}

// False when the loop is to end.
bool CHttpLoop::runTasks() {
  // Whoever wakes the loop from here on has posted something new.
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
    // The message is gone once the exchange removes its handle.
    const CURLcode code = message->data.result;
    static_cast<CHttpExchange*>(exchange)->finish(code);
  }
  return any;
}

void CHttpLoop::checkStalls(TimePoint now) {
  if (now - stallsChecked_ < kStallCheckInterval) {
    return;
  }
  stallsChecked_ = now;
  std::vector<CHttpExchange*> stalled;
  for (CHttpExchange* exchange : exchanges_) {
    if (exchange->stalledAt(now)) {
      stalled.push_back(exchange);
    }
  }
  for (CHttpExchange* exchange : stalled) {
    // One of several for a file may have ended the others.
    if (exchanges_.count(exchange) != 0) {
      exchange->finish(CURLE_OPERATION_TIMEDOUT);
    }
  }
}

// What was open when the machine went to sleep is likely dead, and the other side does not say so.
void CHttpLoop::noticeSleep(TimePoint now) {
  const Duration slept = clock_.slept();
  if (slept - slept_ >= kNoticedSleep) {
    woke_ = now;
    stallsChecked_ = {};  // who waited for a minute before it need not wait for another
  }
  slept_ = slept;
}

// No connection that was used before the machine slept is used again.
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
  // Without anything to do the thread sleeps until it is woken. The wait itself does not go on
  // while the machine sleeps, so that one for something that is due must be short.
  const bool idle = exchanges_.empty() && !due;
  Duration limit = idle ? Duration(std::chrono::hours(1)) : kStallCheckInterval;
  if (due) {
    limit = std::clamp<Duration>(*due - clock_.now(), Duration::zero(), limit);
  }
  if (atOnce) {
    limit = Duration::zero();
  }
  sleeping_ = true;
  // Who called before that has not woken it.
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
