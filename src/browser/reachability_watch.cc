#include "browser/reachability_watch.h"

#include <json/writer.h>

#include <atomic>
#include <utility>

#include "app/log/guarded.h"
#include "app/log/logger.h"
#include "browser/loading_page.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/cef_frame.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {
namespace {

constexpr std::int64_t kCheckPeriodMs = 250;
// Number of consecutive checks of a quiet page before the service is probed: one second, or two
// while the loading page shows that the service is unreachable.
constexpr int kQuietChecks = 4;
constexpr int kQuietChecksBeforeRetry = 8;

// The service may have become reachable between the page's load and the probe. Does nothing on a
// page that has loaded.
std::string retryOnErrorPage(const std::string& appUrl) {
  return "(function () {"
         " var entry = performance.getEntriesByType('navigation')[0];"
         " if (location.protocol === 'chrome-error:' || (entry && entry.responseStatus >= 400))"
         " { location.replace(" +
         Json::valueToQuotedString(appUrl.c_str()) + "); } })();";
}

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
  quietChecks_ = 0;
  retriedErrorPage_ = false;
  if (!checkPosted_) {
    checkPosted_ = true;
    postCheck();
  }
}

void ReachabilityWatch::stop() {
  CEF_REQUIRE_UI_THREAD();
  browser_ = nullptr;
  result_.reset();
  probeThread_.request_stop();
}

void ReachabilityWatch::postCheck() {
  CefPostDelayedTask(TID_UI,
                     base::BindOnce(&ReachabilityWatch::check, CefRefPtr<ReachabilityWatch>(this)),
                     kCheckPeriodMs);
}

void ReachabilityWatch::check() {
  CEF_REQUIRE_UI_THREAD();
  checkPosted_ = false;
  guarded("ReachabilityWatch", [this] {
    if (!browser_) {
      return;
    }
    if (result_ && result_->ready) {
      useResult(std::exchange(result_, nullptr)->reachable);
    } else if (!result_ && isTimeToProbe()) {
      startProbe();
    }
    if (browser_) {
      checkPosted_ = true;
      postCheck();
    }
  });
}

bool ReachabilityWatch::isTimeToProbe() {
  quietChecks_ = isQuiet() ? quietChecks_ + 1 : 0;
  return quietChecks_ >= (showsLoadingPage() ? kQuietChecksBeforeRetry : kQuietChecks);
}

bool ReachabilityWatch::isQuiet() const {
  return browser_->GetMainFrame() && !browser_->IsLoading();
}

bool ReachabilityWatch::showsLoadingPage() const {
  const CefRefPtr<CefFrame> frame = browser_->GetMainFrame();
  return frame && isUnreachablePageUrl(frame->GetURL());
}

void ReachabilityWatch::startProbe() {
  result_ = std::make_shared<Result>();
  const auto work = [probe = probe_, url = page_.appUrl,
                     result = result_](const std::stop_token& stop) {
    guarded("ReachabilityWatch", [&] { result->reachable = probe(url, stop); });
    result->ready = true;
  };
  probeThread_ = std::jthread(work);
}

void ReachabilityWatch::useResult(bool reachable) {
  quietChecks_ = 0;
  if (!isQuiet()) {
    return;  // the page has moved on
  }
  if (showsLoadingPage()) {
    if (reachable) {
      retry();
    }
  } else if (!reachable) {
    showLoadingPage();
  } else {
    retryErrorPageOnce();
  }
}

void ReachabilityWatch::retry() {
  logInformation("The service answers again, trying to load main app using URL: ", page_.appUrl);
  browser_->GetMainFrame()->LoadURL(page_.appUrl);
}

void ReachabilityWatch::showLoadingPage() {
  logWarning("The web application cannot be reached at ", page_.appUrl,
             ", showing the loading page");
  retriedErrorPage_ = false;
  browser_->GetMainFrame()->LoadURL(page_.unreachablePageUrl);
}

void ReachabilityWatch::retryErrorPageOnce() {
  if (!retriedErrorPage_) {
    retriedErrorPage_ = true;
    const CefRefPtr<CefFrame> frame = browser_->GetMainFrame();
    frame->ExecuteJavaScript(retryOnErrorPage(page_.appUrl), frame->GetURL(), 0);
    return;
  }
  logInformation("The web application at ", page_.appUrl, " answers but has not announced itself");
  stop();
}

}  // namespace zantrio
