#include "browser/zt_cef_handler.h"

#include <gtest/gtest.h>

#include "bridge/drag_handler.h"
#include "bridge/query_handler_base.h"
#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

using test::FakeBrowser;
using test::FakeDragData;
using test::FakeRouter;

class BrowserClient : public test::ZtCefHandlerTest {};

TEST_F(BrowserClient, LeavesAPopUpAlone) {
  const CefRefPtr<FakeBrowser> popup(new FakeBrowser(2, true));
  client->OnAfterCreated(popup);
  EXPECT_TRUE(registry.entries().empty());
  EXPECT_TRUE(framework.routers().empty());
  EXPECT_TRUE(services.calls.empty());
  EXPECT_EQ(framework.pendingTasks(), 0U);
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{
                "information Browser instance created!",
                "information Window created is a pop up window, skipping initialization"}));
}

TEST_F(BrowserClient, ConnectsEveryBridgeInTheOrderOfTheNames) {
  const auto browser = openBrowser();
  EXPECT_EQ(services.calls, std::vector<std::string>{"init"});
  const auto& routers = framework.routers();
  ASSERT_EQ(routers.size(), registry.entries().size());
  std::size_t index = 0;
  for (const auto& [name, handler] : registry.entries()) {
    const FakeRouter& router = *routers[index++];
    EXPECT_EQ(router.config().js_query_function.ToString(), name);
    EXPECT_EQ(router.config().js_cancel_function.ToString(), "cefQueryCancel");
    ASSERT_EQ(router.handlers.size(), 1U);
    EXPECT_EQ(router.handlers[0], handler.get());
    EXPECT_FALSE(router.addedFirst);
  }
}

TEST_F(BrowserClient, CancelsTheQueriesOfABridgeWhoseHandlerCannotBeMade) {
  services.hasAddressBook = false;
  openBrowser();
  ASSERT_EQ(framework.routers().size(), 6U);
  const FakeRouter& router = *framework.routers().back();
  EXPECT_EQ(router.config().js_query_function.ToString(), "addressBookSearchManagerBridge_IPC");
  EXPECT_TRUE(router.handlers.empty());
}

TEST_F(BrowserClient, FeedsTheTransferLibrary) {
  const test::ScopedHome home("/home/me");
  openBrowser();
  EXPECT_EQ(transfers.restEndPoint, "http://127.0.0.1:9");
  EXPECT_EQ(transfers.userAgent.find("Zantrio/1.2.3 ("), 0U);
  EXPECT_EQ(transfers.appFilesPath, L"/home/me/Library/Application Support/Zantrio CEF/");
  EXPECT_EQ(transfers.managersAlive, 2);
  EXPECT_NE(transfers.uploadCallback, nullptr);
  EXPECT_NE(transfers.downloadCallback, nullptr);
  EXPECT_TRUE(log.contains("information Initializing zt-transfers!"));
}

TEST_F(BrowserClient, SkipsBridgesWithoutRouterOrHandler) {
  framework.failRouterFor("nativeAppBridge_IPC");
  registry.set("aBridge", nullptr);
  openBrowser();
  EXPECT_EQ(framework.routers().size(), 5U);
  EXPECT_TRUE(
      log.contains("error OnAfterCreated: Failed to create router for object nativeAppBridge_IPC"));
  EXPECT_TRUE(log.contains("error OnAfterCreated: handler for object aBridge is NULL!"));
}

TEST_F(BrowserClient, LoadsTheWebApplicationHalfASecondLater) {
  const auto browser = openBrowser();
  framework.advance(499);
  EXPECT_TRUE(browser->frame->loads.empty());
  framework.advance(1);
  EXPECT_EQ(browser->frame->loads, std::vector<std::string>{appUrl});
  EXPECT_TRUE(log.contains("information Trying to load main app using URL: " + appUrl));
  EXPECT_TRUE(client->OnBeforeBrowse(browser, browser->frame, nullptr, false, false));
  client->OnRenderProcessTerminated(browser, TS_PROCESS_CRASHED, 0, "");
  for (const auto& router : framework.routers()) {
    EXPECT_EQ(router->browsed, 1);
    EXPECT_EQ(router->terminated, 1);
  }
}

TEST_F(BrowserClient, OffersCompleteMessagesToAllRouters) {
  const auto browser = openBrowser();
  EXPECT_FALSE(client->OnProcessMessageReceived(nullptr, nullptr, PID_RENDERER,
                                                CefProcessMessage::Create("message")));
  EXPECT_FALSE(client->OnProcessMessageReceived(browser, nullptr, PID_RENDERER, nullptr));
  EXPECT_FALSE(sendMessage(browser));
  framework.routers().front()->handlesMessages = true;
  EXPECT_TRUE(sendMessage(browser));
  for (const auto& router : framework.routers()) {
    EXPECT_EQ(router->messages, 2);
  }
}

class DialogAnswer : public CefJSDialogCallback {
 public:
  void Continue(bool success, const CefString& user_input) override {
    answers.push_back((success ? "yes" : "no") + user_input.ToString());
  }
  std::vector<std::string> answers;

 private:
  IMPLEMENT_REFCOUNTING(DialogAnswer);
};

TEST_F(BrowserClient, HasDialogsOfThePageAnsweredByTheUserOrTheFramework) {
  const CefRefPtr<DialogAnswer> answer(new DialogAnswer);
  const auto ask = [&](CefJSDialogHandler::JSDialogType type) {
    bool suppress = false;
    return client->OnJSDialog(nullptr, "http://a", type, "Grüße?", "default", answer, suppress);
  };
  EXPECT_TRUE(ask(JSDIALOGTYPE_CONFIRM));
  services.confirmAnswer = false;
  EXPECT_TRUE(ask(JSDIALOGTYPE_CONFIRM));
  EXPECT_TRUE(ask(JSDIALOGTYPE_ALERT));
  EXPECT_FALSE(ask(JSDIALOGTYPE_PROMPT));
  services.available = false;
  EXPECT_FALSE(ask(JSDIALOGTYPE_CONFIRM));
  EXPECT_FALSE(ask(JSDIALOGTYPE_ALERT));
  EXPECT_EQ(answer->answers, (std::vector<std::string>{"yes", "no", "yes"}));
  EXPECT_EQ(services.calls,
            (std::vector<std::string>{"confirm Grüße? 0", "confirm Grüße? 0", "alert Grüße?"}));
}

// Accepts drags of files, or no drags.
class DragTaker : public CQueryHandlerBase, public IDragHandler {
 public:
  explicit DragTaker(bool takes) : takes_(takes) {}
  Poco::Any getHandlerData(int kind) override {
    return kind == kDragHandler ? Poco::Any(static_cast<IDragHandler*>(this)) : Poco::Any();
  }
  bool onDragData(const DragMessage& message) override {
    kinds.push_back(message.kind);
    data = Poco::AnyCast<FileData>(message.payload);
    return takes_ && message.kind == DragMessage::kFiles;
  }
  void filesDropped(const std::vector<std::string>& paths, bool complete, bool defer) override {
    dropped = paths;
    flags = {complete, defer};
  }

  std::vector<std::uint32_t> kinds;
  FileData data;
  std::vector<std::string> dropped;
  std::pair<bool, bool> flags;

 private:
  const bool takes_;
};

TEST_F(BrowserClient, CancelsDragsThatNoHandlerTakes) {
  const auto dragEnters = [this](const std::vector<std::string>& paths) {
    return client->OnDragEnter(nullptr, new FakeDragData(paths), DRAG_OPERATION_COPY);
  };
  EXPECT_TRUE(dragEnters({"/a"}));
  auto* const refusing = new DragTaker(false);
  registry.set("a", refusing);
  EXPECT_TRUE(dragEnters({"/a"}));
  auto* const taking = new DragTaker(true);
  registry.set("b", taking);
  EXPECT_FALSE(dragEnters({"/a", "/b c/d"}));
  ASSERT_EQ(taking->data.paths.size(), 2U);
  EXPECT_EQ(taking->data.paths[1].toString(), "/b c/d");
  EXPECT_TRUE(log.contains("information OnDragEnter: Drag detected!"));
  EXPECT_TRUE(dragEnters({}));
  EXPECT_EQ(taking->kinds, (std::vector<std::uint32_t>{1, 0}));
  EXPECT_EQ(refusing->kinds.size(), 3U);
  EXPECT_TRUE(log.contains("information Drag data type: 0"));
}

class WebAppLifecycle : public BrowserClient {
 protected:
  DragTaker* addDragTaker() {
    auto* const taker = new DragTaker(true);
    registry.set("dragTaker", taker);
    return taker;
  }
};

TEST_F(WebAppLifecycle, StartsTheManagersAndHandsInitialFilesOverWhenThePageIsReady) {
  transfers.startupThrows = true;  // of the uploads, which come last
  openBrowser();
  DragTaker* const taker = addDragTaker();
  client->onStartup();
  EXPECT_TRUE(taker->dropped.empty());
  EXPECT_EQ(transfers.calls, (std::vector<std::string>{"download startup", "upload startup"}));
  EXPECT_TRUE(log.contains("information onStartup called! App loaded"));
  EXPECT_TRUE(log.contains("error onStartup: Exception: no start"));
  CInitialFilesContainer::instance().set({"/a", "/b"}, false, true);
  client->onStartup();
  EXPECT_EQ(taker->dropped, (std::vector<std::string>{"/a", "/b"}));
  EXPECT_EQ(taker->flags, std::make_pair(false, true));
  EXPECT_TRUE(log.contains("information Initial files container has 2 files in it!"));
  EXPECT_EQ(CInitialFilesContainer::instance().files().size(), 2U);
}

TEST_F(WebAppLifecycle, KeepsFilesOfASecondStartUntilThePageIsReady) {
  const auto browser = openBrowser();
  DragTaker* const taker = addDragTaker();
  CInitialFilesContainer::instance().set({"/a"}, true, false);
  client->openFiles({"/b"});
  EXPECT_TRUE(taker->dropped.empty());
  EXPECT_TRUE(browser->host->focused);
  client->onStartup();
  EXPECT_EQ(taker->dropped, (std::vector<std::string>{"/a", "/b"}));
  client->openFiles({"/c"});
  EXPECT_EQ(taker->dropped, std::vector<std::string>{"/c"});
  EXPECT_EQ(taker->flags, std::make_pair(true, false));
}

TEST_F(WebAppLifecycle, ClosesAllBrowsersWhenThePageWantsToLeave) {
  const auto browser = openBrowser();
  client->onShutdown();
  EXPECT_EQ(browser->host->closeCalls, std::vector<bool>{false});
  EXPECT_TRUE(log.contains("information onShutdown: Shutdown was initiated by the app!"));
}

TEST_F(WebAppLifecycle, NavigatesToTheRoutesOfThePageIfThereIsOne) {
  client->newShare();
  EXPECT_TRUE(log.contains(
      "error Failed to navigate to requested URL, since there are no active browsers!"));
  const auto browser = openBrowser();
  client->newMessage();
  client->newShare();
  const auto& scripts = browser->frame->scripts;
  ASSERT_EQ(scripts.size(), 2U);
  EXPECT_EQ(scripts[0].code, "Backbone.history.navigate('/message/new', { trigger: true });");
  EXPECT_EQ(scripts[1].code, "Backbone.history.navigate('/share/new', { trigger: true });");
  EXPECT_EQ(scripts[0].url, browser->frame->url);
  browser->frame = nullptr;
  client->newShare();
  EXPECT_TRUE(
      log.contains("error Failed to navigate to reuqsted URL, since there is no active frame!"));
}

}  // namespace
}  // namespace zantrio
