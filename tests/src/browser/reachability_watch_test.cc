#include "browser/reachability_watch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "browser/loading_page.h"
#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

using test::FakeBrowser;

class Reachability : public test::ZtCefHandlerTest {
 protected:
  Reachability() {
    ZtCefHandler::Options options;
    options.probe = [this](const std::string& url, const std::string& userAgent, const StopFlag&) {
      EXPECT_EQ(url, appUrl);
      EXPECT_TRUE(userAgent.starts_with("Zantrio/1.2.3 (")) << userAgent;
      ++probes;
      return reachable.load();
    };
    createClient(options);
    browser = openBrowser();
    framework.advance(500);
    browser->frame->loads.clear();
  }

  // Advances the clock and lets the probe's thread run until the condition holds.
  bool advanceUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition() && std::chrono::steady_clock::now() < limit) {
      framework.advance(50);
      std::this_thread::yield();
    }
    return condition();
  }
  bool waitForLoads(std::size_t count) {
    return advanceUntil([&] { return browser->frame->loads.size() == count; });
  }
  void show(const std::string& url, int status) {
    browser->host->shown = new test::FakeNavigationEntry(url, status);
  }
  void advanceAMinute() { framework.advance(60'000); }

  std::atomic<bool> reachable{false};
  std::atomic<int> probes{0};
  CefRefPtr<FakeBrowser> browser;
  const std::string unreachablePage =
      "file:///bundle/Resources/loading.html#unreachable=http%3A%2F%2F127.0.0.1%3A9%2Fapp";
};

TEST_F(Reachability, EndsWhenTheApplicationIsReadyOrClosed) {
  const std::function<void()> ends[] = {[this] { client->onStartup(); },
                                        [this] { client->OnBeforeClose(browser); }};
  for (const auto& end : ends) {
    client->loadApp(browser);
    browser->frame->loads.clear();
    show(appUrl, 0);
    end();
    advanceAMinute();
    EXPECT_TRUE(browser->frame->loads.empty());
    EXPECT_EQ(framework.pendingTasks(), 0U);
  }
}

TEST_F(Reachability, LeavesEveryPageThatHasLoadedWithoutAProbe) {
  browser->loading = true;
  show(appUrl, 0);
  advanceAMinute();
  browser->loading = false;
  for (const auto& [url, status] : {std::pair(appUrl, 200),
                                    {appUrl, 401},
                                    {appUrl, 403},
                                    {"http://sign.in/", 404},
                                    {"http://sign.in/", 500}}) {
    show(url, status);
    advanceAMinute();
    EXPECT_TRUE(browser->frame->loads.empty()) << url << status;
  }
  EXPECT_EQ(probes, 0);
}

TEST_F(Reachability, ShowsTheLoadingPageForAFailureAndLoadsTheApplicationWhenTheServiceAnswers) {
  std::size_t loads = 0;
  for (const auto& [url, status] : {std::pair(appUrl, 0), {appUrl, 503}, {"http://sign.in/", 0}}) {
    reachable = false;
    probes = 0;
    show(url, status);
    ASSERT_TRUE(waitForLoads(++loads)) << url << status;
    EXPECT_EQ(browser->frame->loads.back(), unreachablePage);
    EXPECT_EQ(probes, 0);
    show(unreachablePage, 0);
    ASSERT_TRUE(advanceUntil([&] { return probes >= 3; }));
    EXPECT_EQ(browser->frame->loads.size(), loads);
    reachable = true;
    ASSERT_TRUE(waitForLoads(++loads));
    EXPECT_EQ(browser->frame->loads.back(), appUrl);
    show(appUrl, 200);
    framework.advance(250);
  }
  EXPECT_TRUE(log.contains("warning The web application cannot be reached at " + appUrl +
                           ", showing the loading page"));
}

TEST_F(Reachability, TriesLessOftenWhenOnlyTheProbeIsAnswered) {
  reachable = true;
  for (std::size_t tries = 1; tries <= 8; ++tries) {
    show(appUrl, 0);
    ASSERT_TRUE(waitForLoads(2 * tries - 1));
    show(unreachablePage, 0);
    ASSERT_TRUE(waitForLoads(2 * tries));
  }
  show(appUrl, 0);
  ASSERT_TRUE(waitForLoads(17));
  show(unreachablePage, 0);
  const int before = probes;
  framework.advance(59'000);
  EXPECT_EQ(probes, before);
}

TEST(LoadingPage, EscapesItsPath) {
  const CAppSettings settings(nullptr, "/My Apps?/#1/Zäntrio/bin/zantrio");
  EXPECT_EQ(loadingPageUrl(settings),
            "file:///My%20Apps%3F/%231/Z%C3%A4ntrio/Resources/loading.html");
  const std::string url = unreachablePageUrl(settings, "http://h/a?b=c&d#e %");
  EXPECT_EQ(url,
            loadingPageUrl(settings) + "#unreachable=http%3A%2F%2Fh%2Fa%3Fb%3Dc%26d%23e%20%25");
  EXPECT_TRUE(isUnreachablePageUrl(url));
  EXPECT_FALSE(isUnreachablePageUrl(loadingPageUrl(settings)));
  EXPECT_FALSE(isUnreachablePageUrl("http://h/#unreachable=x"));
}

}  // namespace
}  // namespace zantrio
