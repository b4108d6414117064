// A browser for a test, with a client that records its calls.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "include/cef_client.h"
#include "include/wrapper/cef_message_router.h"

namespace cef_test {

using QueryCallback = CefRefPtr<CefMessageRouterBrowserSideCallback>;

struct Query {
  CefRefPtr<CefBrowser> browser;
  CefRefPtr<CefFrame> frame;
  int64_t id;
  CefString request;
  bool persistent;
  QueryCallback callback;
};

// Handles the queries of both query functions. Tests replace functions to change its behaviour.
class TestClient final : public CefClient,
                         public CefLifeSpanHandler,
                         public CefJSDialogHandler,
                         public CefDragHandler,
                         public CefRequestHandler,
                         public CefMessageRouterBrowserSide::Handler {
 public:
  TestClient();

  // True if the query is accepted. By default the response is the request.
  std::function<bool(const Query&)> onQuery;
  // Passes this request to `handle`; other requests get themselves as response.
  void onRequest(const std::string& request, std::function<bool(const Query&)> handle);
  std::function<bool(CefRefPtr<CefProcessMessage>)> dropMessage = [](auto) { return false; };
  std::function<bool(JSDialogType, const CefString&, const CefString&,
                     CefRefPtr<CefJSDialogCallback>)>
      onDialog;
  std::function<bool(CefRefPtr<CefDragData>, DragOperationsMask)> onDrag;
  std::function<bool()> doClose = [] { return false; };
  // If set, the test browser is an off-screen one.
  CefRefPtr<CefRenderHandler> renderHandler;
  CefRefPtr<CefDisplayHandler> displayHandler;

  std::vector<std::string> requests;
  std::vector<int64_t> canceled;
  std::vector<std::string> messageNames;
  std::vector<CefRefPtr<CefBrowser>> browsers;  // open
  std::vector<std::string> events;              // created, popup, doClose, closed, …
  std::vector<TerminationStatus> terminations;
  bool leavesRequestsToFramework = false;

  int pendingQueries() { return router_->GetPendingCount(nullptr, nullptr); }
  CefRefPtr<CefMessageRouterBrowserSide> router() { return router_; }

  CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
  CefRefPtr<CefJSDialogHandler> GetJSDialogHandler() override { return this; }
  CefRefPtr<CefDragHandler> GetDragHandler() override { return this; }
  CefRefPtr<CefRequestHandler> GetRequestHandler() override {
    return leavesRequestsToFramework ? nullptr : this;
  }
  CefRefPtr<CefRenderHandler> GetRenderHandler() override { return renderHandler; }
  CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return displayHandler; }

  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source, CefRefPtr<CefProcessMessage> message) override;
  void OnAfterCreated(CefRefPtr<CefBrowser> browser) override {
    events.push_back(browser->IsPopup() ? "popup" : "created");
    browsers.push_back(browser);
  }
  bool DoClose(CefRefPtr<CefBrowser> /*browser*/) override {
    events.push_back("doClose");
    return doClose();
  }
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;
  bool OnJSDialog(CefRefPtr<CefBrowser> /*browser*/, const CefString& /*origin*/, JSDialogType type,
                  const CefString& text, const CefString& proposal,
                  CefRefPtr<CefJSDialogCallback> callback, bool& /*suppress*/) override {
    return onDialog && onDialog(type, text, proposal, callback);
  }
  bool OnDragEnter(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefDragData> data,
                   DragOperationsMask mask) override {
    return onDrag && onDrag(data, mask);
  }
  void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus status,
                                 int /*error_code*/, const CefString& /*error*/) override {
    terminations.push_back(status);
    router_->OnRenderProcessTerminated(browser);
  }
  bool OnQuery(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int64_t query_id,
               const CefString& request, bool persistent, CefRefPtr<Callback> callback) override;
  void OnQueryCanceled(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                       int64_t query_id) override {
    canceled.push_back(query_id);
  }

 private:
  CefRefPtr<CefMessageRouterBrowserSide> router_;
  CefRefPtr<CefMessageRouterBrowserSide> otherRouter_;
  IMPLEMENT_REFCOUNTING(TestClient);
};

// A browser that is open during a test.
class TestBrowser {
 public:
  // Opens the page and waits for the browser; the page may still be loading.
  explicit TestBrowser(const std::string& html, CefRefPtr<TestClient> client = new TestClient);
  ~TestBrowser();

  TestClient& client() { return *client_; }
  CefRefPtr<CefBrowser> browser() { return browser_; }
  CefRefPtr<CefFrame> frame() { return browser_->GetMainFrame(); }

  // Executes a script once the page is loaded.
  void run(const std::string& script);
  // Waits until the page has sent the request.
  bool waitFor(const std::string& request);
  // The value of an expression (or of its promise) as text, once the page is loaded.
  std::string evaluate(const std::string& expression);
  // Evaluates the expression until it has the value.
  bool becomes(const std::string& expression, const std::string& value);
  bool waitForEvent(const std::string& event);

 private:
  void waitUntilLoaded();

  CefRefPtr<TestClient> client_;
  CefRefPtr<CefBrowser> browser_;
  std::string url_;
  bool loaded_ = false;
};

// Closes the open browsers of a client without asking.
void closeAll(TestClient& client);

}  // namespace cef_test
