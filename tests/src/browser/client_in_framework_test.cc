// The client in the real framework: window, page, queries, events and close. One test, because the
// framework starts once in a process.
#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/ServerSocket.h>
#include <Poco/StreamCopier.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <sstream>
#include <thread>

#include "app/framework_settings.h"
#include "app/zantrio_app.h"
#include "browser/zt_cef_handler.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/wrapper/cef_closure_task.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "src/fakes/log_capture.h"
#include "src/fakes/test_bundle.h"

namespace zantrio {
namespace {

namespace net = Poco::Net;
using test::FakeTransfers;

constexpr int kEvents = 2000;
constexpr auto kLimit = std::chrono::seconds(60);

// Announces itself, tells the service that it did, then collects events and tells what came.
const std::string kPage = R"(<!DOCTYPE html><title>test</title><script>
  function report(path, text) { fetch(path, {method: 'POST', body: text}); }
  var ids = [];
  window._uploadManager_fileStateChanged = function (event) {
    if (ids.push(event.id) === )" +
                          std::to_string(kEvents) + R"() { report('/events', ids.join(' ')); }
  };
  window.nativeAppBridge_IPC({request: '{"method":"onAppReady"}', persistent: false,
    onSuccess: function (answer) { report('/ready', answer); },
    onFailure: function (code, text) { report('/ready', code + text); }});
</script>)";

// What the page has told, by path.
class Reports {
 public:
  void add(const std::string& path, const std::string& text) {
    const std::lock_guard lock(mutex_);
    reports_[path] = text;
    changed_.notify_all();
  }
  // Empty when nothing comes.
  std::string waitFor(const std::string& path) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kLimit, [&] { return reports_.count(path) > 0; });
    return reports_[path];
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::string, std::string> reports_;
};

class Handler : public net::HTTPRequestHandler {
 public:
  explicit Handler(Reports& reports) : reports_(reports) {}
  void handleRequest(net::HTTPServerRequest& request, net::HTTPServerResponse& response) override {
    std::string body;
    Poco::StreamCopier::copyToString(request.stream(), body);
    if (request.getMethod() == "POST") {
      reports_.add(request.getURI(), body);
    }
    response.setContentType("text/html");
    response.sendBuffer(kPage.data(), kPage.size());
  }

 private:
  Reports& reports_;
};

class HandlerFactory : public net::HTTPRequestHandlerFactory {
 public:
  explicit HandlerFactory(Reports& reports) : reports_(reports) {}
  net::HTTPRequestHandler* createRequestHandler(const net::HTTPServerRequest&) override {
    return new Handler(reports_);
  }

 private:
  Reports& reports_;
};

using CallbackPromise = std::promise<zt_transfers::CUploadManager::ICallback*>;

void tellCallback(std::shared_ptr<CallbackPromise> promise) {
  promise->set_value(FakeTransfers::instance().uploadCallback);
}

// As the transfer library does from a thread of its own.
void sendEvents() {
  const auto promise = std::make_shared<CallbackPromise>();
  auto callback = promise->get_future();
  CefPostTask(TID_UI, base::BindOnce(&tellCallback, promise));
  auto* const relay = callback.get();
  for (int i = 0; i < kEvents; ++i) {
    zt_transfers::FileState file;
    file.groupId = i;
    relay->onFileStateChanged(file);
  }
}

std::string expectedIds() {
  std::ostringstream ids;
  for (int i = 0; i < kEvents; ++i) {
    ids << (i > 0 ? " " : "") << i;
  }
  return ids.str();
}

void quitLoop() {
  CefQuitMessageLoop();
}

TEST(ClientInFramework, ServesThePageFromItsStartToItsEnd) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const test::TestBundle bundle;
  const test::ScopedHome home(bundle.folder().c_str());
  const test::LogCapture log;
  FakeTransfers::instance().reset();
  test::FakeServices::instance().reset();

  Reports reports;
  net::HTTPServer service(new HandlerFactory(reports),
                          net::ServerSocket(net::SocketAddress("127.0.0.1", 0)),
                          new net::HTTPServerParams);
  service.start();
  bundle.writeInfo("<key>AppBaseUrl</key><string>http://127.0.0.1:" +
                   std::to_string(service.port()) + "</string>");
  const Poco::SharedPtr<CMainBundle> mainBundle(new CMainBundle(bundle.folder()));
  const Poco::SharedPtr<CAppSettings> settings(
      new CAppSettings(mainBundle, bundle.folder() + "/bin/zantrio"));

  CefSettings frameworkSettings;
  fillFrameworkSettings(*settings, frameworkSettings);
  std::string name = "zantrio";
  std::array<char*, 2> arguments{name.data(), nullptr};
  ASSERT_TRUE(CefInitialize(CefMainArgs(1, arguments.data()), frameworkSettings,
                            new ZantrioApp(settings), nullptr));
  std::thread script([&] {
    EXPECT_EQ(reports.waitFor("/ready"), "null\n");
    sendEvents();
    EXPECT_EQ(reports.waitFor("/events"), expectedIds());
    ZtCefHandler::instance()->CloseAllBrowsers(false);
  });
  CefPostDelayedTask(TID_UI, base::BindOnce(&quitLoop), 110'000);
  CefRunMessageLoop();
  script.join();
  CefShutdown();
  service.stopAll(true);

  EXPECT_EQ(FakeTransfers::instance().calls,
            (std::vector<std::string>{"download startup", "upload startup", "download shutdown",
                                      "upload shutdown"}));
  EXPECT_EQ(FakeTransfers::instance().managersAlive, 0);
  EXPECT_EQ(ZtCefHandler::instance(), nullptr);
  EXPECT_TRUE(log.contains("information OnBeforeClose: Shutting down!"));
}

}  // namespace
}  // namespace zantrio
