#include "browser/reachability_watch.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "browser/loading_page.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/cef_frame.h"
#include "include/cef_navigation_entry.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {
namespace {

constexpr std::int64_t kCheckPeriodMs = 250;
// A failed page is replaced after one second; the service is probed after two.
constexpr int kChecksOfFailure = 4;
constexpr int kChecksBeforeProbe = 8;
// A service that answers the probe but not the browser is tried more and more rarely, to once a
// minute.
constexpr int kMaxChecksBeforeProbe = 240;

}  // namespace

struct ReachabilityWatch::Result {
  std::atomic<bool> ready{false};
  bool reachable = false;  // written before `ready` is set
};

ReachabilityWatch::ReachabilityWatch(ReachabilityProbe probe) : probe_(std::move(probe)) {}

ReachabilityWatch::~ReachabilityWatch() = default;

void ReachabilityWatch::start(const CefRefPtr<CefBrowser>& browser, const Page& page) {
  CEF_REQUIRE_UI_THREAD();
  browser_ = browser;
  page_ = page;
  lastShown_ = Shown::kNothingYet;
  checksBeforeProbe_ = kChecksBeforeProbe;
  if (!checkPosted_) {
    checkPosted_ = true;
    postCheck();
  }
}

void ReachabilityWatch::stop() {
  CEF_REQUIRE_UI_THREAD();
  browser_ = nullptr;
  result_.reset();
  if (probeThread_) {
    probeThread_->requestStop();
  }
}

void ReachabilityWatch::postCheck() {
  CefPostDelayedTask(TID_UI,
                     base::BindOnce(&ReachabilityWatch::check, CefRefPtr<ReachabilityWatch>(this)),
                     kCheckPeriodMs);
}

void ReachabilityWatch::check() {
  CEF_REQUIRE_UI_THREAD();
  checkPosted_ = false;
  if (!browser_) {
    return;
  }
  guarded("ReachabilityWatch", [this] { look(); });
  checkPosted_ = true;
  postCheck();
}

void ReachabilityWatch::look() {
  const Shown now = shown();
  unchangedChecks_ = now == lastShown_ ? unchangedChecks_ + 1 : 1;
  lastShown_ = now;
  if (result_ && result_->ready) {
    useResult(std::exchange(result_, nullptr)->reachable);
  } else if (now == Shown::kPage) {
    checksBeforeProbe_ = kChecksBeforeProbe;
  } else if (now == Shown::kFailure && unchangedChecks_ >= kChecksOfFailure) {
    showLoadingPage();
  } else if (now == Shown::kLoadingPage && unchangedChecks_ >= checksBeforeProbe_ && !result_) {
    startProbe();
  }
}

ReachabilityWatch::Shown ReachabilityWatch::shown() const {
  const CefRefPtr<CefNavigationEntry> entry = browser_->GetHost()->GetVisibleNavigationEntry();
  if (browser_->IsLoading() || !entry || !entry->IsValid() || !browser_->GetMainFrame()) {
    return Shown::kNothingYet;
  }
  if (isUnreachablePageUrl(entry->GetURL())) {
    return Shown::kLoadingPage;
  }
  return isFailure(*entry) ? Shown::kFailure : Shown::kPage;
}

// No status: there was no response. An error page that came from the service is a failure only in
// place of the web application; elsewhere the user may be signing in on it.
bool ReachabilityWatch::isFailure(CefNavigationEntry& entry) const {
  const std::string url = entry.GetURL();
  const int status = entry.GetHttpStatusCode();
  return url.starts_with("http") && (status == 0 || (url == page_.appUrl && !promisesPage(status)));
}

void ReachabilityWatch::startProbe() {
  result_ = std::make_shared<Result>();
  const auto work = [probe = probe_, page = page_, result = result_](const StopFlag& stop) {
    guarded("ReachabilityWatch",
            [&] { result->reachable = probe(page.appUrl, page.userAgent, stop); });
    result->ready = true;
  };
  probeThread_ = std::make_unique<StoppableThread>(work);
}

void ReachabilityWatch::useResult(bool reachable) {
  if (lastShown_ != Shown::kLoadingPage) {
    return;  // the user has moved on
  }
  unchangedChecks_ = 0;
  if (reachable) {
    checksBeforeProbe_ = std::min(checksBeforeProbe_ * 2, kMaxChecksBeforeProbe);
    logInformation("The service answers again, trying to load main app using URL: ", page_.appUrl);
    browser_->GetMainFrame()->LoadURL(page_.appUrl);
  }
}

void ReachabilityWatch::showLoadingPage() {
  logWarning("The web application cannot be reached at ", page_.appUrl,
             ", showing the loading page");
  lastShown_ = Shown::kNothingYet;
  browser_->GetMainFrame()->LoadURL(page_.unreachablePageUrl);
}

}  // namespace zantrio
