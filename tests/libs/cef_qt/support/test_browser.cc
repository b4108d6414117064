#include "support/test_browser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "include/cef_task.h"
#include "support/framework.h"

namespace cef_test {
namespace {

CefRefPtr<CefMessageRouterBrowserSide> makeRouter(const char* function) {
  CefMessageRouterConfig config;
  config.js_query_function = function;
  return CefMessageRouterBrowserSide::Create(config);
}

template <class Values, class Value>
bool contains(const Values& values, const Value& value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

bool echo(const Query& query) {
  query.callback->Success(query.request);
  return true;
}

}  // namespace

TestClient::TestClient() : router_(makeRouter(kQuery)), otherRouter_(makeRouter(kOtherQuery)) {
  router_->AddHandler(this, false);
  otherRouter_->AddHandler(this, false);
  onQuery = echo;
}

void TestClient::onRequest(const std::string& request, std::function<bool(const Query&)> handle) {
  onQuery = [request, handle = std::move(handle)](const Query& query) {
    return query.request == request ? handle(query) : echo(query);
  };
}

bool TestClient::OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                          CefProcessId source,
                                          CefRefPtr<CefProcessMessage> message) {
  EXPECT_TRUE(CefCurrentlyOn(TID_UI));
  EXPECT_EQ(source, PID_RENDERER);
  messageNames.push_back(message->GetName());
  if (dropMessage(message)) {
    return false;
  }
  const bool first = router_->OnProcessMessageReceived(browser, frame, source, message);
  const bool second = otherRouter_->OnProcessMessageReceived(browser, frame, source, message);
  EXPECT_FALSE(first && second);
  return first || second;
}

void TestClient::OnBeforeClose(CefRefPtr<CefBrowser> browser) {
  events.push_back("closed");
  router_->OnBeforeClose(browser);
  otherRouter_->OnBeforeClose(browser);
  std::erase_if(browsers, [&](const auto& open) { return open->IsSame(browser); });
}

bool TestClient::OnQuery(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int64_t query_id,
                         const CefString& request, bool persistent, CefRefPtr<Callback> callback) {
  EXPECT_TRUE(CefCurrentlyOn(TID_UI));
  requests.push_back(request);
  return onQuery({browser, frame, query_id, request, persistent, callback});
}

TestBrowser::TestBrowser(const std::string& html, CefRefPtr<TestClient> client)
    : client_(std::move(client)) {
  CefWindowInfo window;
  CefString(&window.window_name) = "Test";
  window.bounds = CefRect(0, 0, 640, 480);
  static int pages = 0;
  url_ = writePage("page" + std::to_string(++pages) + ".html", html);
  CefBrowserSettings settings;
  if (client_->renderHandler) {
    window.SetAsWindowless(kNullWindowHandle);
    settings.windowless_frame_rate = 60;
  }
  CefBrowserHost::CreateBrowser(window, client_, url_, settings, nullptr, nullptr);
  EXPECT_TRUE(runUntil([this] { return !client_->browsers.empty(); }));
  browser_ = client_->browsers.front();
}

TestBrowser::~TestBrowser() {
  closeAll(*client_);
}

void TestBrowser::waitUntilLoaded() {
  if (std::exchange(loaded_, true)) {
    return;
  }
  const std::string mark = "(loaded)";
  const bool told = runUntil([&] {
    frame()->ExecuteJavaScript("if (document.URL === '" + url_ +
                                   "' && document.readyState === 'complete' && !window.told) "
                                   "window.told = " +
                                   kQuery + "({request: '" + mark + "'})",
                               "", 0);
    return contains(client_->requests, mark);
  });
  EXPECT_TRUE(told) << url_;
  std::erase(client_->requests, mark);
}

void TestBrowser::run(const std::string& script) {
  waitUntilLoaded();
  frame()->ExecuteJavaScript(script, "", 0);
}

bool TestBrowser::waitFor(const std::string& request) {
  return runUntil([&] { return contains(client_->requests, request); });
}

bool TestBrowser::waitForEvent(const std::string& event) {
  return runUntil([&] { return contains(client_->events, event); });
}

std::string TestBrowser::evaluate(const std::string& expression) {
  static int evaluations = 0;
  const std::string mark = "value " + std::to_string(++evaluations) + ": ";
  run("(async () => (" + expression + "))().catch(String).then(value => " + kQuery +
      "({request: '" + mark + "' + value}))");
  std::string value = "(no response)";
  runUntil([&] {
    for (const std::string& request : client_->requests) {
      if (request.rfind(mark, 0) == 0) {
        value = request.substr(mark.size());
        return true;
      }
    }
    return false;
  });
  return value;
}

bool TestBrowser::becomes(const std::string& expression, const std::string& value) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (evaluate(expression) != value) {
    if (std::chrono::steady_clock::now() > limit) {
      return false;
    }
  }
  return true;
}

void closeAll(TestClient& client) {
  client.doClose = [] { return false; };
  const auto open = client.browsers;
  for (const auto& browser : open) {
    browser->GetHost()->CloseBrowser(true);
  }
  EXPECT_TRUE(runUntil([&] { return client.browsers.empty(); }));
}

}  // namespace cef_test
