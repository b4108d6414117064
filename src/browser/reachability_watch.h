#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "browser/http_probe.h"
#include "browser/stoppable_thread.h"
#include "include/cef_browser.h"

namespace zantrio {

// Detects that the web application could not be loaded, shows the loading page with a message
// instead, and loads the web application once the service responds.
//
// The framework does not report failed loads to this client, so the page is looked at several times
// a second until the web application has announced itself (see stop). A page that has loaded is
// left alone, whatever it is. Only while the loading page is shown, a probe requests the
// application's URL. A retry by the loading page's button is handled like the first load.
//
// Ownership: counted references; posted tasks keep a running watch alive. Thread: UI, except the
// probe, which has its own thread.
class ReachabilityWatch : public CefBaseRefCounted {
 public:
  struct Page {
    std::string appUrl;
    std::string unreachablePageUrl;
    std::string userAgent;  // of the browser, for the probe
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
  enum class Shown { kNothingYet, kPage, kFailure, kLoadingPage };
  // A probe's result, handed from its thread to the UI thread.
  struct Result;

  void postCheck();
  void check();
  void look();
  Shown shown() const;
  bool isFailure(CefNavigationEntry& entry) const;
  void startProbe();
  void useResult(bool reachable);
  void showLoadingPage();

  const ReachabilityProbe probe_;
  CefRefPtr<CefBrowser> browser_;
  Page page_;
  Shown lastShown_ = Shown::kNothingYet;
  int unchangedChecks_ = 0;  // since that was shown first
  int checksBeforeProbe_ = 0;
  bool checkPosted_ = false;
  std::shared_ptr<Result> result_;  // set from the start of a probe until its result is used
  std::unique_ptr<StoppableThread> probeThread_;

  IMPLEMENT_REFCOUNTING(ReachabilityWatch);
};

}  // namespace zantrio
