#include "browser/reachability_watch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "browser/loading_page.h"
#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

using test::FakeBrowser;

class Reachability : public test::ZtCefHandlerTest {
 protected:
  Reachability() {
    ZtCefHandler::Options options;
    options.probe = [this](const std::string& url, const std::stop_token&) {
      EXPECT_EQ(url, appUrl);
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
  void advanceAMinute() { framework.advance(60'000); }

  std::atomic<bool> reachable{false};
  std::atomic<int> probes{0};
  CefRefPtr<FakeBrowser> browser;
  const std::string unreachablePage =
      "file:///bundle/Resources/loading.html#unreachable=http%3A%2F%2F127.0.0.1%3A9%2Fapp";
};

TEST_F(Reachability, IsNotProbedWhileThePageLoadsNorOnceItIsReadyOrClosed) {
  browser->loading = true;
  advanceAMinute();
  EXPECT_EQ(probes, 0);
  const std::function<void()> ends[] = {[this] { client->onStartup(); },
                                        [this] { client->OnBeforeClose(browser); }};
  for (const auto& end : ends) {
    client->loadApp(browser);
    browser->loading = false;
    end();
    advanceAMinute();
    EXPECT_EQ(probes, 0);
    EXPECT_EQ(framework.pendingTasks(), 0U);
  }
}

TEST_F(Reachability, ShowsTheLoadingPageUntilTheServiceAnswers) {
  const auto triesFromAnErrorPage = [this](std::size_t count) {
    return advanceUntil([=, this] { return browser->frame->scripts.size() == count; });
  };
  reachable = true;
  ASSERT_TRUE(triesFromAnErrorPage(1));
  reachable = false;
  ASSERT_TRUE(waitForLoads(1));
  EXPECT_EQ(browser->frame->loads[0], unreachablePage);
  EXPECT_TRUE(log.contains("warning The web application cannot be reached at " + appUrl +
                           ", showing the loading page"));
  const int before = probes;
  ASSERT_TRUE(advanceUntil([&] { return probes >= before + 3; }));
  EXPECT_EQ(browser->frame->loads.size(), 1U);
  reachable = true;
  ASSERT_TRUE(waitForLoads(2));
  EXPECT_EQ(browser->frame->loads[1], appUrl);
  EXPECT_TRUE(triesFromAnErrorPage(2));
}

TEST_F(Reachability, IsMissedAgainAfterAFailedTry) {
  ASSERT_TRUE(waitForLoads(1));
  browser->frame->url = appUrl;  // as after the loading page's own attempt
  ASSERT_TRUE(waitForLoads(2));
  EXPECT_EQ(browser->frame->loads[1], unreachablePage);
}

TEST_F(Reachability, TriesOnceFromAnErrorPageAndLeavesAPageThatDoesNotAnnounceItself) {
  reachable = true;
  EXPECT_TRUE(advanceUntil([this] {
    return log.contains("information The web application at " + appUrl +
                        " answers but has not announced itself");
  }));
  EXPECT_TRUE(browser->frame->loads.empty());
  ASSERT_EQ(browser->frame->scripts.size(), 1U);
  const std::string& script = browser->frame->scripts[0].code;
  EXPECT_NE(script.find("location.protocol === 'chrome-error:'"), std::string::npos);
  EXPECT_NE(script.find("location.replace(\"" + appUrl + "\")"), std::string::npos);
  advanceAMinute();
  EXPECT_EQ(probes, 2);
  EXPECT_EQ(framework.pendingTasks(), 0U);
}

TEST(LoadingPage, EscapesItsPath) {
  const CAppSettings settings(nullptr, "/My Apps/Zäntrio/bin/zantrio");
  EXPECT_EQ(loadingPageUrl(settings), "file:///My%20Apps/Z%C3%A4ntrio/Resources/loading.html");
  const std::string url = unreachablePageUrl(settings, "http://h/a?b=c&d#e %");
  EXPECT_EQ(url,
            loadingPageUrl(settings) + "#unreachable=http%3A%2F%2Fh%2Fa%3Fb%3Dc%26d%23e%20%25");
  EXPECT_TRUE(isUnreachablePageUrl(url));
  EXPECT_FALSE(isUnreachablePageUrl(loadingPageUrl(settings)));
  EXPECT_FALSE(isUnreachablePageUrl("http://h/#unreachable=x"));
}

}  // namespace
}  // namespace zantrio
