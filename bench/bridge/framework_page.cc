#include "framework_page.h"

#include <chrono>
#include <string>

#include "include/cef_client.h"
#include "include/wrapper/cef_message_router.h"
#include "page_text.h"

namespace bench {
namespace {

class App final : public CefApp, public CefRenderProcessHandler {
 public:
  CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return this; }
  void OnWebKitInitialized() override {
    router_ = CefMessageRouterRendererSide::Create(CefMessageRouterConfig());
  }
  void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                        CefRefPtr<CefV8Context> context) override {
    router_->OnContextCreated(browser, frame, context);
  }
  void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                         CefRefPtr<CefV8Context> context) override {
    router_->OnContextReleased(browser, frame, context);
  }
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source,
                                CefRefPtr<CefProcessMessage> message) override {
    return router_->OnProcessMessageReceived(browser, frame, source, message);
  }

 private:
  CefRefPtr<CefMessageRouterRendererSide> router_;
  IMPLEMENT_REFCOUNTING(App);
};

}  // namespace

CefRefPtr<CefApp> makeApp() {
  return new App;
}

// Answers queries with their request; one that begins with "result " ends the wait.
class FrameworkPage::Client final : public CefClient,
                                    public CefLifeSpanHandler,
                                    public CefMessageRouterBrowserSide::Handler {
 public:
  Client() : router_(CefMessageRouterBrowserSide::Create(CefMessageRouterConfig())) {
    router_->AddHandler(this, false);
  }

  CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
  void OnAfterCreated(CefRefPtr<CefBrowser> browser) override { browser_ = browser; }
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override {
    router_->OnBeforeClose(browser);
    browser_ = nullptr;
    CefQuitMessageLoop();
  }
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source,
                                CefRefPtr<CefProcessMessage> message) override {
    return router_->OnProcessMessageReceived(browser, frame, source, message);
  }
  bool OnQuery(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/, int64_t /*id*/,
               const CefString& request, bool /*persistent*/,
               CefRefPtr<Callback> callback) override {
    if (request.length() != 100) {
      result_ = request;
      CefQuitMessageLoop();
    }
    callback->Success(request);
    return true;
  }

  void run(const std::string& script) {
    browser_->GetMainFrame()->ExecuteJavaScript(script, "", 0);
  }
  // The page's result.
  std::string wait() {
    CefRunMessageLoop();
    return result_;
  }
  void close() {
    browser_->GetHost()->CloseBrowser(true);
    CefRunMessageLoop();
  }

 private:
  const CefRefPtr<CefMessageRouterBrowserSide> router_;
  CefRefPtr<CefBrowser> browser_;
  std::string result_;
  IMPLEMENT_REFCOUNTING(Client);
};

FrameworkPage::FrameworkPage() : client_(new Client) {
  CefWindowInfo window;
  window.bounds = CefRect(0, 0, 800, 600);
  const std::string page = "data:text/html,<script>" + kPageFunctions +
                           "const ask = (request, onSuccess) => cefQuery({request, onSuccess});"
                           "cefQuery({request: 'result ready'});</script>";
  CefBrowserHost::CreateBrowser(window, client_, page, CefBrowserSettings(), nullptr, nullptr);
  client_->wait();
}

FrameworkPage::~FrameworkPage() {
  client_->close();
}

double FrameworkPage::queriesPerSecond(int inFlight, int count) {
  client_->run("measure(" + std::to_string(inFlight) + ", " + std::to_string(count) +
               ").then(rate => cefQuery({request: String(rate)}))");
  return std::stod(client_->wait());
}

double FrameworkPage::scriptsPerSecond(int count) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < count; ++i) {
    client_->run(script(i));
  }
  client_->run("cefQuery({request: 'result end'})");
  client_->wait();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return count / time.count();
}

bool FrameworkPage::scriptsInOrder() {
  client_->run("cefQuery({request: String(inOrder)})");
  return client_->wait() == "true";
}

}  // namespace bench
