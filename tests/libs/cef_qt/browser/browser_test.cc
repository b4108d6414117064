#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>

#include "include/base/cef_bind.h"
#include "include/cef_browser.h"
#include "include/wrapper/cef_closure_task.h"
#include "support/framework.h"
#include "support/http_service.h"
#include "support/test_browser.h"

namespace cef_test {
namespace {

using Events = std::vector<std::string>;

// Kills the render processes that this process started.
void killRenderProcesses() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream commandLine(entry.path() / "cmdline");
    std::ifstream status(entry.path() / "stat");
    std::string words((std::istreambuf_iterator<char>(commandLine)), {});
    std::string pid, name, state;
    pid_t parent = 0;
    status >> pid >> name >> state >> parent;
    if (parent == getpid() && words.find("--type=renderer") != std::string::npos) {
      kill(std::stoi(pid), SIGKILL);
    }
  }
}

TEST(Browser, ClosesWithoutAskingWhenForced) {
  TestBrowser page("<script>onbeforeunload = () => 'stay'; testQuery({request: 'up'})</script>");
  ASSERT_TRUE(page.waitFor("up"));
  const CefRefPtr<CefBrowser> browser = page.browser();
  browser->GetHost()->CloseBrowser(true);
  ASSERT_TRUE(page.waitForEvent("closed"));
  EXPECT_EQ(page.client().events, (Events{"created", "doClose", "closed"}));
  EXPECT_FALSE(browser->IsValid());
  EXPECT_FALSE(browser->GetMainFrame());
  browser->Reload();
  browser->GetHost()->CloseBrowser(false);
  runQueued();
}

TEST(Browser, AsksThePageAndTheClientBeforeItCloses) {
  TestBrowser page(
      "<script>addEventListener('beforeunload', () => testQuery({request: 'asked'}));"
      "testQuery({request: 'up'})</script>");
  ASSERT_TRUE(page.waitFor("up"));
  page.client().doClose = [] { return true; };
  page.browser()->GetHost()->CloseBrowser(false);
  ASSERT_TRUE(page.waitForEvent("doClose"));
  EXPECT_TRUE(page.waitFor("asked"));
  EXPECT_EQ(page.evaluate("'still ' + 'here'"), "still here");
  page.client().doClose = [] { return false; };
  page.browser()->GetHost()->CloseBrowser(false);
  ASSERT_TRUE(page.waitForEvent("closed"));
  EXPECT_EQ(page.client().events, (Events{"created", "doClose", "doClose", "closed"}));
}

TEST(Browser, CanBeClosedBeforeItHasLoaded) {
  TestBrowser page("never seen");
  page.browser()->GetHost()->CloseBrowser(false);
  EXPECT_TRUE(page.waitForEvent("closed"));
}

TEST(Browser, OpensPopUpsThatShareTheClientAndCloseAlone) {
  TestBrowser page(
      "<script>const html = \"<script>testQuery({request: 'child'})<\\/script>\"</script>");
  page.run(
      "window.child = window.open(URL.createObjectURL(new Blob([html], {type: 'text/html'})), "
      "'name', 'width=300,height=200')");
  ASSERT_TRUE(page.waitFor("child"));
  ASSERT_EQ(page.client().browsers.size(), 2u);
  const CefRefPtr<CefBrowser> child = page.client().browsers.back();
  EXPECT_TRUE(child->IsPopup());
  EXPECT_FALSE(child->IsSame(page.browser()));
  EXPECT_EQ(child->GetMainFrame()->GetName(), "name");
  page.run("child.close()");
  ASSERT_TRUE(page.waitForEvent("closed"));
  EXPECT_EQ(page.client().browsers.size(), 1u);
  EXPECT_EQ(page.evaluate("String(child.closed)"), "true");
}

TEST(Frame, ExecutesScriptsInOrderEachOnItsOwnAndNamesTheirUrlAndLineInErrors) {
  TestBrowser page("<script>window.seen = []</script>");
  std::string expected;
  for (int i = 0; i < 300; ++i) {
    const std::string number = std::to_string(i);
    page.run(i % 10 == 3 ? "this is no script (" : "seen.push(" + number + ") // end");
    expected += i % 10 == 3 ? "" : (i == 0 ? "" : ",") + number;
  }
  EXPECT_EQ(page.evaluate("seen.join()"), expected);
  page.frame()->ExecuteJavaScript("window.trace = new Error('x').stack // no newline at the end",
                                  "http://127.0.0.1/a b.js", 7);
  EXPECT_NE(page.evaluate("trace").find("http://127.0.0.1/a%20b.js:7:"), std::string::npos)
      << page.evaluate("trace");
}

TEST(Frame, ShowsScriptsAndAnswersInTheOrderTheyWereGiven) {
  TestBrowser page(
      "<script>window.seen = ''; testQuery({request: 'order', onSuccess: r => "
      "seen += r})</script>");
  page.client().onRequest("order", [](const Query& query) {
    query.frame->ExecuteJavaScript("seen += 'a'", "", 0);
    query.callback->Success("b");
    query.frame->ExecuteJavaScript("seen += 'c'; testQuery({request: 'end'})", "", 0);
    return true;
  });
  ASSERT_TRUE(page.waitFor("end"));
  EXPECT_EQ(page.evaluate("seen"), "abc");
}

TEST(Browser, ReportsTheEndOfItsRenderProcessAndServesAgainAfterAReload) {
  TestBrowser page("<script>testQuery({request: 'up'})</script>");
  ASSERT_TRUE(page.waitFor("up"));
  QueryCallback kept;
  page.client().onQuery = [&](const Query& query) {
    kept = query.callback;
    return true;
  };
  page.run("testQuery({request: 'pending'})");
  ASSERT_TRUE(page.waitFor("pending"));
  killRenderProcesses();
  ASSERT_TRUE(runUntil([&] { return !page.client().terminations.empty(); }));
  EXPECT_EQ(page.client().terminations.front(), TS_PROCESS_WAS_KILLED);
  EXPECT_EQ(page.client().canceled.size(), 1u);
  page.client().requests.clear();
  page.browser()->Reload();
  EXPECT_TRUE(page.waitFor("up"));
}

TEST(Browser, ReloadsAPageWhoseProcessEndedForAClientThatDoesNotCareButNotWhileItCloses) {
  TestBrowser page("<script>testQuery({request: 'up'})</script>");
  page.client().leavesRequestsToFramework = true;
  ASSERT_TRUE(page.waitFor("up"));
  page.client().requests.clear();
  killRenderProcesses();
  ASSERT_TRUE(page.waitFor("up"));
  page.evaluate("addEventListener('beforeunload', event => event.preventDefault())");
  killRenderProcesses();
  page.browser()->GetHost()->CloseBrowser(false);
  EXPECT_TRUE(page.waitForEvent("closed"));
}

TEST(Browser, TellsTheStatusOfThePageThatItShows) {
  std::atomic<bool> isFileServed{false};
  const zantrio::test::HttpService service([&](auto& request, auto& response) {
    if (request.getURI() == "/404") {
      response.setStatus(Poco::Net::HTTPResponse::HTTP_NOT_FOUND);
    } else if (request.getURI() == "/file") {
      response.set("Content-Disposition", "attachment");
    }
    response.send() << "<p>a page";
    // The engine may ask for a page's icon afterwards.
    isFileServed = isFileServed || request.getURI() == "/file";
  });
  Poco::Net::ServerSocket unused(Poco::Net::SocketAddress("127.0.0.1", 0));
  const std::string nowhere = "http://" + unused.address().toString() + "/";
  unused.close();
  TestBrowser page("");
  const auto shown = [&] { return page.browser()->GetHost()->GetVisibleNavigationEntry(); };
  for (const auto& [url, status] :
       {std::pair(service.url("/404"), 404), {nowhere, 0}, {service.url("/page"), 200}}) {
    page.frame()->LoadURL(url);
    EXPECT_TRUE(runUntil([&, url = url] {
      return shown()->GetURL().ToString() == url && !page.browser()->IsLoading();
    }));
    EXPECT_EQ(shown()->GetHttpStatusCode(), status) << url;
  }
  page.frame()->LoadURL(service.url("/file"));
  EXPECT_TRUE(runUntil([&] { return isFileServed && !page.browser()->IsLoading(); }));
  EXPECT_EQ(shown()->GetURL().ToString(), service.url("/page"));
  EXPECT_EQ(shown()->GetHttpStatusCode(), 200);
}

TEST(Browser, GoesBackInItsHistoryToAPageWhoseQueriesWork) {
  TestBrowser page("<script>onpageshow = () => testQuery({request: 'first'})</script>");
  ASSERT_TRUE(page.waitFor("first"));
  page.frame()->LoadURL(
      writePage("second.html", "<script>testQuery({request: 'second'})</script>"));
  ASSERT_TRUE(page.waitFor("second"));
  page.client().requests.clear();
  page.frame()->ExecuteJavaScript("history.back()", "", 0);
  EXPECT_TRUE(page.waitFor("first"));
}

}  // namespace
}  // namespace cef_test
