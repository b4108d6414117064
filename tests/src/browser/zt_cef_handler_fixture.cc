#include "src/browser/zt_cef_handler_fixture.h"

#include "app/register_query_handlers.h"

namespace zantrio::test {
namespace {

bool reachable(const std::string& /*url*/, const std::string& /*userAgent*/,
               const StopFlag& /*stop*/) {
  return true;
}

}  // namespace

ZtCefHandlerTest::ZtCefHandlerTest() {
  transfers.reset();
  services.reset();
  CInitialFilesContainer::instance().set({}, true, false);
  bundle_.writeInfo(
      "<key>AppBaseUrl</key><string>http://127.0.0.1:9</string>"
      "<key>AppPath</key><string>/app</string>"
      "<key>CFBundleShortVersionString</key><string>1.2.3</string>");
  ZtCefHandler::Options options;
  options.probe = reachable;
  createClient(options);
}

ZtCefHandlerTest::~ZtCefHandlerTest() {
  framework.dropTasks();
  messages::CMessageHandlerList::instance().clear();
  registry.clear();
  client = nullptr;
  EXPECT_EQ(ZtCefHandler::instance(), nullptr);
  EXPECT_EQ(transfers.managersAlive, 0);
}

void ZtCefHandlerTest::createClient(ZtCefHandler::Options options) {
  options.registerHandlers = [] { registerQueryHandlers(); };
  client = nullptr;
  const Poco::SharedPtr<CMainBundle> bundle(new CMainBundle(bundle_.folder()));
  client = new ZtCefHandler(new CAppSettings(bundle, "/bundle/bin/zantrio"), options);
}

CefRefPtr<FakeBrowser> ZtCefHandlerTest::openBrowser(int identifier) {
  const CefRefPtr<FakeBrowser> browser(new FakeBrowser(identifier));
  client->OnAfterCreated(browser);
  return browser;
}

bool ZtCefHandlerTest::sendMessage(const CefRefPtr<FakeBrowser>& browser) {
  return client->OnProcessMessageReceived(browser, browser->frame, PID_RENDERER,
                                          CefProcessMessage::Create("message"));
}

}  // namespace zantrio::test
