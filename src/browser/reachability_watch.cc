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

namespace zantrio {
namespace {

constexpr std::int64_t kLookPeriodMs = 250;
// Looks in a row at a quiet page before the service is asked: one second, and two seconds while
// the loading page tells that it did not answer.
constexpr int kQuietLooks = 4;
constexpr int kQuietLooksBeforeRetry = 8;

// The service may have come up between the page's try and the probe. Does nothing on a page that
// did load.
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
  browser_ = browser;
  page_ = page;
  quietLooks_ = 0;
  secondLook_ = false;
  if (!looking_) {
    looking_ = true;
    postLook();
  }
}

void ReachabilityWatch::stop() {
  browser_ = nullptr;
  result_.reset();
  probeThread_.request_stop();
}

void ReachabilityWatch::postLook() {
  CefPostDelayedTask(TID_UI,
                     base::BindOnce(&ReachabilityWatch::look, CefRefPtr<ReachabilityWatch>(this)),
                     kLookPeriodMs);
}

void ReachabilityWatch::look() {
  looking_ = false;
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
      looking_ = true;
      postLook();
    }
  });
}

bool ReachabilityWatch::isTimeToProbe() {
  quietLooks_ = isQuiet() ? quietLooks_ + 1 : 0;
  return quietLooks_ >= (showsLoadingPage() ? kQuietLooksBeforeRetry : kQuietLooks);
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
  quietLooks_ = 0;
  if (!isQuiet()) {
    return;  // it has moved on meanwhile
  }
  if (showsLoadingPage()) {
    if (reachable) {
      retry();
    }
  } else if (!reachable) {
    showLoadingPage();
  } else {
    lookAtLoadedPage();
  }
}

void ReachabilityWatch::retry() {
  logInformation("The service answers again, trying to load main app using URL: ", page_.appUrl);
  browser_->GetMainFrame()->LoadURL(page_.appUrl);
}

void ReachabilityWatch::showLoadingPage() {
  logWarning("The web application cannot be reached at ", page_.appUrl,
             ", showing the loading page");
  secondLook_ = false;
  browser_->GetMainFrame()->LoadURL(page_.unreachablePageUrl);
}

void ReachabilityWatch::lookAtLoadedPage() {
  if (!secondLook_) {
    secondLook_ = true;
    const CefRefPtr<CefFrame> frame = browser_->GetMainFrame();
    frame->ExecuteJavaScript(retryOnErrorPage(page_.appUrl), frame->GetURL(), 0);
    return;
  }
  logInformation("The web application at ", page_.appUrl, " answers but has not announced itself");
  stop();
}

}  // namespace zantrio
