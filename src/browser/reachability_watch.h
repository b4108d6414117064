#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "browser/http_probe.h"
#include "include/cef_browser.h"

namespace zantrio {

// Detects that the web application did not load, shows the loading page with a message instead, and
// loads the web application once the service responds.
//
// The framework does not report failed loads to this client. A page that has stopped loading for a
// second without announcing itself (see stop) is therefore checked: a probe requests the
// application's URL. If the service responds, the page is left alone; otherwise the loading page
// replaces it and the probe is repeated. A retry by the loading page's button is handled like the
// first load.
//
// Ownership: counted references; posted tasks keep a running watch alive. Thread: UI, except the
// probe, which has its own thread.
class ReachabilityWatch : public CefBaseRefCounted {
 public:
  struct Page {
    std::string appUrl;
    std::string unreachablePageUrl;
  };

  explicit ReachabilityWatch(ReachabilityProbe probe);
  ReachabilityWatch(const ReachabilityWatch&) = delete;
  ReachabilityWatch& operator=(const ReachabilityWatch&) = delete;

  // Starts watching a browser in which the web application is being loaded.
  void start(const CefRefPtr<CefBrowser>& browser, const Page& page);
  // Call it when the web application has announced itself or the browser closes. Does not wait for
  // the probe.
  void stop();

 protected:
  // Stops the probe and waits for its thread.
  ~ReachabilityWatch() override;

 private:
  // A probe's result, handed from its thread to the UI thread.
  struct Result;

  void postCheck();
  void check();
  bool isTimeToProbe();
  bool isQuiet() const;
  bool showsLoadingPage() const;
  void startProbe();
  void useResult(bool reachable);
  void retry();
  void showLoadingPage();
  void retryErrorPageOnce();

  const ReachabilityProbe probe_;
  CefRefPtr<CefBrowser> browser_;
  Page page_;
  int quietChecks_ = 0;
  bool retriedErrorPage_ = false;  // since the loading page was shown last
  bool checkPosted_ = false;
  std::shared_ptr<Result> result_;  // set from the start of a probe until its result is used
  std::jthread probeThread_;

  IMPLEMENT_REFCOUNTING(ReachabilityWatch);
};

}  // namespace zantrio
