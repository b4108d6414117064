#include <gtest/gtest.h>

#include <thread>

#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

using test::FakeBrowser;

constexpr const char* kOverdue =
    "warning ZtCefHandler::OnBeforeClose has not been called within the expected period, calling "
    "it manually!";

class CloseProtocol : public test::ZtCefHandlerTest {
 protected:
  void createImpatientClient() {
    ZtCefHandler::Options options;
    options.closePeriod = Poco::Timespan(0, 1000);
    createClient(options);
  }
};

TEST_F(CloseProtocol, AsksEveryBrowserToCloseFromAnyThread) {
  const auto first = openBrowser(1);
  const auto second = openBrowser(2);
  client->CloseAllBrowsers(false);
  framework.dropTasks();
  std::thread worker([this] { client->CloseAllBrowsers(true); });
  worker.join();
  EXPECT_EQ(first->host->closeCalls, std::vector<bool>{false});
  framework.runDueTasks();
  EXPECT_EQ(first->host->closeCalls, (std::vector<bool>{false, true}));
  EXPECT_EQ(second->host->closeCalls, (std::vector<bool>{false, true}));
  EXPECT_TRUE(log.contains("information Closing all browsers!"));
}

TEST_F(CloseProtocol, SurvivesABrowserThatClosesDuringTheCall) {
  const auto first = openBrowser(1);
  const auto second = openBrowser(2);
  first->host->onClose = [&] { client->OnBeforeClose(first); };
  second->host->onClose = [&] { client->OnBeforeClose(second); };
  client->CloseAllBrowsers(false);
  EXPECT_EQ(framework.quitCalls(), 1);
}

TEST_F(CloseProtocol, DropsMessagesOnceTheLastBrowserCloses) {
  const auto first = openBrowser(1);
  const auto second = openBrowser(2);
  for (const auto& router : framework.routers()) {
    router->handlesMessages = true;
  }
  EXPECT_FALSE(client->DoClose(first));
  EXPECT_TRUE(sendMessage(second));
  client->OnBeforeClose(first);
  EXPECT_FALSE(client->DoClose(second));
  EXPECT_FALSE(sendMessage(second));
  EXPECT_TRUE(log.contains(
      "information OnProcessMessageReceived: message received while closing the app!"));
}

TEST_F(CloseProtocol, TakesEverythingDownAndEndsTheLoopWhateverFails) {
  transfers.shutdownThrows = true;
  const auto browser = openBrowser();
  const auto routers = framework.routers();
  client->DoClose(browser);
  EXPECT_EQ(framework.quitCalls(), 0);
  client->OnBeforeClose(browser);
  framework.dropTasks();
  client->onCloseTask();
  EXPECT_EQ(framework.pendingTasks(), 0U) << "the watchdog was not called off";
  EXPECT_EQ(framework.quitCalls(), 1);
  EXPECT_EQ(transfers.calls, (std::vector<std::string>{"download shutdown", "upload shutdown"}));
  EXPECT_EQ(transfers.uploadCallback, nullptr);
  EXPECT_EQ(transfers.managersAlive, 0);
  EXPECT_TRUE(registry.entries().empty());
  for (const auto& router : routers) {
    EXPECT_EQ(router->closed, 1);
  }
  EXPECT_FALSE(client->hasBrowsers());
  EXPECT_TRUE(log.contains("information Close proces initiated!"));
  EXPECT_TRUE(log.contains("information OnBeforeClose: Shutting down!"));
  EXPECT_TRUE(log.contains("error OnBeforeClose: Exception: no end"));
}

TEST_F(CloseProtocol, IgnoresPopUps) {
  createImpatientClient();
  const auto browser = openBrowser();
  framework.dropTasks();
  const CefRefPtr<FakeBrowser> popup(new FakeBrowser(2, true));
  EXPECT_FALSE(client->DoClose(popup));
  client->OnBeforeClose(popup);
  client->onCloseTask();  // the timer's call, if it were running
  EXPECT_TRUE(client->hasBrowsers());
  EXPECT_FALSE(registry.entries().empty());
  EXPECT_EQ(framework.quitCalls(), 0);
  EXPECT_EQ(framework.routers().front()->closed, 0);
}

TEST_F(CloseProtocol, IsFinishedByTheWatchdogWhenTheFrameworkDoesNotReport) {
  createImpatientClient();
  const auto browser = openBrowser();
  framework.dropTasks();
  client->DoClose(browser);
  ASSERT_TRUE(framework.waitForTask());
  EXPECT_TRUE(log.contains(kOverdue));
  EXPECT_TRUE(client->hasBrowsers());  // nothing happens outside the UI thread
  framework.runDueTasks();
  EXPECT_FALSE(client->hasBrowsers());
  EXPECT_EQ(framework.quitCalls(), 1);
  client->OnBeforeClose(browser);  // too late: everything is closed already
  EXPECT_EQ(transfers.calls, (std::vector<std::string>{"download shutdown", "upload shutdown"}));
}

TEST_F(CloseProtocol, OutlivesItsWatchdogWhateverComesFirst) {
  for (int i = 0; i < 200; ++i) {
    createImpatientClient();
    const auto browser = openBrowser();
    framework.dropTasks();
    client->DoClose(browser);
    if (i % 2 == 0) {
      client->OnBeforeClose(browser);
    }
    client = nullptr;
    framework.runDueTasks();
    messages::CMessageHandlerList::instance().clear();
    registry.clear();
  }
}

TEST_F(CloseProtocol, ClosesDuringADialogOfThePage) {
  const auto browser = openBrowser();
  class Ignore : public CefJSDialogCallback {
    void Continue(bool, const CefString&) override {}
    IMPLEMENT_REFCOUNTING(Ignore);
  };
  services.duringCall = [&] { client->OnBeforeClose(browser); };
  bool suppress = false;
  EXPECT_TRUE(
      client->OnJSDialog(browser, "", JSDIALOGTYPE_CONFIRM, "Sure?", "", new Ignore, suppress));
  EXPECT_EQ(framework.quitCalls(), 1);
}

}  // namespace
}  // namespace zantrio
