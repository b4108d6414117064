#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "include/base/cef_bind.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_message_router.h"
#include "support/framework.h"
#include "support/test_browser.h"

namespace cef_test {
namespace {

// A page function `ask(request)`: the response, or "code: message".
constexpr char kAsk[] = R"(<script>
  const ask = (request, persistent) => new Promise(done => window.testQuery({
    request, persistent: !!persistent, onSuccess: done,
    onFailure: (code, message) => done(code + ': ' + message)}));
</script>)";

TEST(MessageRouter, CarriesQueriesAsMessagesOfTheirNameUnlessTheClientDropsThem) {
  CefRefPtr<TestClient> client(new TestClient);
  client->dropMessage = [](CefRefPtr<CefProcessMessage> message) {
    return message->GetArgumentList()->GetString(2) == "dropped";
  };
  TestBrowser page(kAsk, client);
  page.run("ask('dropped').then(r => window.dropped = r)");
  EXPECT_EQ(page.evaluate("ask('kept').then(r => r + typeof dropped)"), "keptundefined");
  EXPECT_EQ(client->requests.front(), "kept");
  EXPECT_EQ(page.evaluate("new Promise(done => otherQuery({request: 'o', onSuccess: done}))"), "o");
  const auto count = [&](const char* name) {
    return std::count(client->messageNames.begin(), client->messageNames.end(), name);
  };
  EXPECT_EQ(count("otherQueryMsg"), 1);
  EXPECT_EQ(count("testQueryMsg") + 1, std::ssize(client->messageNames));
}

TEST(MessageRouter, RejectsFaultyArgumentsInThePage) {
  TestBrowser page(kAsk);
  const auto thrown = [&](const std::string& arguments) {
    return page.evaluate("(() => { try { testQuery(" + arguments +
                         "); return 'nothing'; } catch (e) { return e.name + ': ' + e.message; }"
                         "})()");
  };
  for (const char* arguments :
       {"", "1", "null", "{}", "{request: 1}", "{request: 'r', onSuccess: 1}",
        "{request: 'r', onFailure: 'f'}", "{request: 'r', persistent: 'yes'}"}) {
    EXPECT_EQ(thrown(arguments).rfind("Error: Invalid arguments; ", 0), 0u) << arguments;
  }
  EXPECT_EQ(page.evaluate("typeof testQuery({request: 'r'})"), "number");
  EXPECT_EQ(page.evaluate("(() => { try { cefQueryCancel('x'); } catch (e) { return e.message; "
                          "} })()")
                .rfind("Invalid arguments; ", 0),
            0u);
}

TEST(MessageRouter, GivesThePageTheFirstResponseOfAHandlerOrAFailure) {
  TestBrowser page(kAsk);
  page.client().onQuery = [](const Query& query) {
    if (query.request == "failing") {
      query.callback->Failure(-7, "no such thing");
    } else if (query.request == "from a thread") {
      std::jthread([callback = query.callback] {
        callback->Success("first");
        callback->Failure(1, "second");
      });
    }
    return query.request != "unknown";
  };
  EXPECT_EQ(page.evaluate("ask('from a thread')"), "first");
  EXPECT_EQ(page.evaluate("ask('failing')"), "-7: no such thing");
  EXPECT_EQ(page.evaluate("ask('unknown')"), "-1: The query has been canceled");
  EXPECT_EQ(page.evaluate("ask('forgotten')"), "-1: The query has been canceled");
  EXPECT_EQ(page.client().pendingQueries(), 0);
}

TEST(MessageRouter, CarriesEveryKindOfTextBothWays) {
  TestBrowser page(kAsk);
  EXPECT_EQ(
      page.evaluate("(async () => { let bad = '';"
                    "const big = 'a\\u20ac\"'.repeat(4e6) + 'end';"  // 20 MB
                    "for (const t of ['', '.', 'a\\0b', '\\ud800', 'x\\udc00y', '\\u2028\\u2029',"
                    " '\\ufeffstart', '\\ufeff', '\"\\\\\\n', '\\u{1f600}', '</script>',"
                    " '#', ';0,2,1,3,5#', big])"
                    "  if (await ask(t) !== t) bad += escape(t.slice(0, 20)) + ' ';"
                    "return bad; })()"),
      "");
}

TEST(MessageRouter, RespondsToPersistentQueriesRepeatedlyUntilTheyFail) {
  TestBrowser page(kAsk);
  page.client().onRequest("p", [](const Query& query) {
    EXPECT_TRUE(query.persistent);
    for (const char* response : {"1", "2", "3"}) {
      query.callback->Success(response);
    }
    query.callback->Failure(9, "end");
    query.callback->Success("late");
    return true;
  });
  EXPECT_EQ(page.evaluate("(async () => { let all = ''; await new Promise(done => testQuery({"
                          "request: 'p', persistent: true, onSuccess: r => all += r + ' ',"
                          "onFailure: (c, m) => { all += c + m; done(); }}));"
                          "await ask('after'); return all; })()"),
            "1 2 3 9end");
}

TEST(MessageRouter, KeepsAnAnsweredPersistentQueryOpenUntilThePageCancelsIt) {
  TestBrowser page(kAsk);
  page.run(
      "window.all = ''; window.id = testQuery({request: 'p', persistent: true, onSuccess: r => "
      "all += r, onFailure: (c, m) => all += c + m})");
  EXPECT_EQ(page.evaluate("ask('after').then(() => all)"), "p");
  EXPECT_EQ(page.client().pendingQueries(), 1);
  EXPECT_EQ(page.evaluate("cefQueryCancel(id)"), "true");
  EXPECT_TRUE(runUntil([&] { return page.client().canceled.size() == 1; }));
  EXPECT_EQ(page.client().pendingQueries(), 0);
}

// A page with a pending query.
class PendingQuery : public testing::Test {
 protected:
  PendingQuery() {
    page.client().onRequest("pending", [this](const Query& query) {
      kept = query.callback;
      return true;
    });
    page.run(
        "window.outcome = ''; window.id = testQuery({request: 'pending', "
        "onSuccess: r => outcome += r, onFailure: (c, m) => outcome += c + m})");
    EXPECT_TRUE(page.waitFor("pending"));
    EXPECT_EQ(page.client().pendingQueries(), 1);
  }

  TestBrowser page{kAsk};
  QueryCallback kept;
};

TEST_F(PendingQuery, IsCanceledByThePage) {
  EXPECT_EQ(page.evaluate("String(cefQueryCancel(id)) + cefQueryCancel(id) + cefQueryCancel(999)"),
            "truefalsefalse");
  ASSERT_TRUE(runUntil([&] { return page.client().canceled.size() == 1; }));
  kept->Success("too late");
  EXPECT_EQ(page.evaluate("ask('x').then(() => outcome)"), "-1The query has been canceled");
  EXPECT_EQ(page.client().pendingQueries(), 0);
}

TEST_F(PendingQuery, IsCanceledWhenThePageIsLeft) {
  page.frame()->LoadURL(writePage("next.html", "<script>testQuery({request: 'next'})</script>"));
  ASSERT_TRUE(page.waitFor("next"));
  EXPECT_TRUE(runUntil([&] { return page.client().canceled.size() == 1; }));
}

TEST_F(PendingQuery, IsCanceledWhenTheBrowserIsClosed) {
  closeAll(page.client());
  EXPECT_EQ(page.client().canceled.size(), 1u);
  kept->Success("into the void");
}

TEST_F(PendingQuery, FailsWhenItsHandlerIsRemoved) {
  EXPECT_FALSE(page.client().router()->AddHandler(&page.client(), true));
  EXPECT_TRUE(page.client().router()->RemoveHandler(&page.client()));
  EXPECT_FALSE(page.client().router()->RemoveHandler(&page.client()));
  EXPECT_EQ(page.client().canceled.size(), 1u);
  page.client().router()->AddHandler(&page.client(), false);
  EXPECT_EQ(page.evaluate("outcome"), "-1The query has been canceled");
}

TEST(MessageRouter, ServesFramesAlsoOfOtherOriginsAndAfterTheyNavigate) {
  TestBrowser page(
      "<script>window.place = 'top'</script><iframe name=inner srcdoc=\"<script>window.place = "
      "'frame'; testQuery({request: 'frame', onSuccess: r => testQuery({request: 'got ' + r})})"
      "</script>\"></iframe><iframe sandbox='allow-scripts' src='data:text/html,<script>"
      "testQuery({request: `data`, onSuccess: () => testQuery({request: `data got`})})</script>'>"
      "</iframe>");
  page.client().onRequest("frame", [](const Query& query) {
    EXPECT_FALSE(query.frame->IsMain());
    EXPECT_EQ(query.frame->GetName(), "inner");
    EXPECT_EQ(query.frame->GetURL(), "about:srcdoc");
    query.frame->ExecuteJavaScript("testQuery({request: 'in ' + place})", "", 0);
    query.callback->Success("it");
    return true;
  });
  for (const char* request : {"in frame", "got it", "data got"}) {
    EXPECT_TRUE(page.waitFor(request)) << request;
  }
  const int contexts = liveContexts();
  page.run(
      "document.querySelector('iframe').srcdoc = '<script>testQuery({request: `again`})"
      "<\\/script>'");
  EXPECT_TRUE(page.waitFor("again"));
  page.run("document.querySelectorAll('iframe').forEach(frame => frame.remove())");
  EXPECT_TRUE(runUntil([&] { return liveContexts() == contexts - 2; }));
}

TEST(MessageRouter, ServesPopUpsAlsoWhenTheyStayEmpty) {
  TestBrowser page(kAsk);
  page.run("window.child = window.open('about:blank')");
  ASSERT_TRUE(page.waitForEvent("popup"));
  const CefRefPtr<CefBrowser> popup = page.client().browsers.back();
  EXPECT_TRUE(popup->IsPopup());
  popup->GetMainFrame()->ExecuteJavaScript(
      "document.write('<p>text</p>');"
      "testQuery({request: 'from empty'})",
      "", 0);
  EXPECT_TRUE(page.waitFor("from empty"));
  popup->GetMainFrame()->LoadURL(
      writePage("popup.html", "<script>testQuery({request: 'from page'})</script>"));
  EXPECT_TRUE(page.waitFor("from page"));
}

TEST(MessageRouter, OutlivesPopUpsThatAreClosedWhileTheyOpen) {
  TestBrowser page(kAsk);
  for (int opened = 1; opened <= 40; ++opened) {
    page.client().events.clear();
    page.run("window.open('about:blank')");
    ASSERT_TRUE(page.waitForEvent("popup"));
    // A little later each time, so that the end meets each step of the start.
    runUntil([] { return false; }, std::chrono::milliseconds(opened));
    page.client().browsers.back()->GetHost()->CloseBrowser(true);
    ASSERT_TRUE(runUntil([&] { return page.client().browsers.size() == 1; }));
  }
}

TEST(MessageRouter, StaysUsableWhenThePageRedefinesWhatItBuildsOnAndThrowsInCallbacks) {
  TestBrowser page(
      "<script>JSON.stringify = JSON.parse = () => 'broken';"
      "Array.prototype.toJSON = String.prototype.toJSON = () => 'broken';"
      "Map.prototype.get = Map.prototype.set = Promise.prototype.then = null;"
      "testQuery({request: 'thrown', onSuccess: () => { throw new Error('page'); }});"
      "testQuery({request: 'robust', onSuccess: r => testQuery({request: r + '!'})});"
      "</script>");
  EXPECT_TRUE(page.waitFor("robust!"));
}

}  // namespace
}  // namespace cef_test
