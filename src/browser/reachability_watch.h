#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "browser/http_probe.h"
#include "include/cef_browser.h"

namespace zantrio {

// Notices that the web application did not come up, shows the loading page in its place, which
// says so, and loads the web application once the service answers.
//
// The framework does not tell this client about failed loads. A page counts as settled when it has
// stopped loading without announcing itself (see stop) for a second. The service is then asked
// from here: when it answers, the page is left as it is, else the loading page takes its place,
// and the service is asked again from time to time. The loading page may also try for itself; a
// failed try is noticed as any other.
//
// Ownership: counted references; a watch that runs keeps itself alive through its posted tasks.
// Thread: UI, but for the probe, which has a thread of its own.
class ReachabilityWatch : public CefBaseRefCounted {
 public:
  struct Page {
    std::string appUrl;
    std::string unreachablePageUrl;
  };

  explicit ReachabilityWatch(ReachabilityProbe probe);
  ReachabilityWatch(const ReachabilityWatch&) = delete;
  ReachabilityWatch& operator=(const ReachabilityWatch&) = delete;

  // Begins to watch the browser, into which the web application is being loaded.
  void start(const CefRefPtr<CefBrowser>& browser, const Page& page);
  // The web application has announced itself, or the browser closes. Does not wait for the probe.
  void stop();

 protected:
  // Waits for the probe, which ends soon when it is told to.
  ~ReachabilityWatch() override;

 private:
  // What a probe's thread leaves for the UI thread.
  struct Result;

  void postLook();
  void look();
  bool isTimeToProbe();
  bool isQuiet() const;
  bool showsLoadingPage() const;
  void startProbe();
  void useResult(bool reachable);
  void retry();
  void showLoadingPage();
  void lookAtLoadedPage();

  const ReachabilityProbe probe_;
  CefRefPtr<CefBrowser> browser_;
  Page page_;
  int quietLooks_ = 0;
  bool secondLook_ = false;  // the service has answered once already
  bool looking_ = false;
  std::shared_ptr<Result> result_;  // while a probe runs, and until its result is used
  std::jthread probeThread_;

  IMPLEMENT_REFCOUNTING(ReachabilityWatch);
};

}  // namespace zantrio
