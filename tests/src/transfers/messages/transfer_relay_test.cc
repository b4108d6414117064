#include "transfers/messages/transfer_relay.h"

#include <gtest/gtest.h>

#include <thread>

#include "bridge/query_handler_context.h"
#include "src/fakes/fake_browser.h"
#include "src/fakes/fake_framework.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "support/log_capture.h"
#include "transfers/messages/message_handler_list.h"

namespace zantrio::messages {
namespace {

using test::FakeBrowser;
using test::FakeFramework;
using test::FakeServices;
using test::FakeTransfers;
using zt_transfers::CDownloadManager;
using zt_transfers::CUploadManager;

class EventRelays : public testing::Test {
 protected:
  EventRelays() {
    transfers.reset();
    services.reset();
    relays.fill();
    QueryHandlerContext context;
    context.browser = browser;
    context.uploadManager = new CUploadManager;
    context.downloadManager = new CDownloadManager;
    relays.attach(context);
  }
  ~EventRelays() override { relays.clear(); }

  std::vector<std::string> scripts() const {
    std::vector<std::string> codes;
    for (const auto& script : browser->frame->scripts) {
      codes.push_back(script.code);
    }
    return codes;
  }

  void reportDownload(std::int32_t state, float percent, bool cancelled, std::int32_t completed) {
    CDownloadManager::GroupState group;
    group.state = state;
    group.percentTransferred = percent;
    group.cancelled = cancelled;
    group.filesCompleted = completed;
    group.downloadFolder = L"/t/caf\xC3\xA9";
    transfers.downloadCallback->onGroupStateChanged(group);
    framework.runDueTasks();
  }

  test::LogCapture log;
  FakeFramework framework;
  FakeTransfers& transfers = FakeTransfers::instance();
  FakeServices& services = FakeServices::instance();
  CefRefPtr<FakeBrowser> browser = new FakeBrowser;
  CMessageHandlerList& relays = CMessageHandlerList::instance();
};

TEST_F(EventRelays, CallThePageOnTheUiThreadInTheOrderOfReports) {
  std::thread library([this] {
    CUploadManager::GroupState group;
    group.id = 3;
    group.bucketId = "b1";
    group.state = 4;
    transfers.uploadCallback->onGroupStateChanged(group);
    zt_transfers::FileState file;
    for (file.groupId = 1; file.groupId < 100; ++file.groupId) {
      transfers.uploadCallback->onFileStateChanged(file);
    }
  });
  library.join();
  EXPECT_TRUE(scripts().empty());
  framework.runDueTasks();
  ASSERT_EQ(scripts().size(), 100U);
  const auto& script = browser->frame->scripts[0];
  EXPECT_TRUE(script.code.starts_with(
      R"(_uploadManager_groupStateChanged({"bucketId":"b1","id":"3","state":{"bucketId")"));
  EXPECT_TRUE(script.code.ends_with(R"("type":"PAUSED"},"type":"PAUSED"})"
                                    "\n);"));
  EXPECT_EQ(script.url, browser->frame->url);
  EXPECT_EQ(script.line, 0);
  for (std::size_t i = 1; i < 100; ++i) {
    ASSERT_NE(scripts()[i].find("\"id\":\"" + std::to_string(i) + "\""), std::string::npos);
  }
}

TEST_F(EventRelays, NameAFunctionForEachKindOfEvent) {
  zt_transfers::FileState file;
  file.fileId = "f";
  file.state = 3;
  transfers.uploadCallback->onFileStateChanged(file);
  transfers.downloadCallback->onFileStateChanged(file);
  transfers.downloadCallback->onGroupStateChanged(CDownloadManager::GroupState());
  framework.runDueTasks();
  ASSERT_EQ(scripts().size(), 3U);
  const std::string argument =
      R"(({"bucketId":"","fileId":"f","id":"0","state":{"bytesTotal":0,"bytesTransfered":0,)"
      R"("percentTransferred":0.0,"type":"PAUSED"},"type":"PAUSED"})"
      "\n);";
  EXPECT_EQ(scripts()[0], "_uploadManager_fileStateChanged" + argument);
  EXPECT_EQ(scripts()[1], "_downloadManager_fileStateChanged" + argument);
  EXPECT_TRUE(scripts()[2].starts_with("_downloadManager_groupStateChanged({"));
  EXPECT_EQ(scripts()[2].find("marked"), std::string::npos);
}

TEST_F(EventRelays, OpenTheFolderOfAFinishedDownloadOnceThePageKnows) {
  std::size_t scriptsBefore = 0;
  services.duringCall = [&] { scriptsBefore = scripts().size(); };
  reportDownload(3, 100, false, 1);
  EXPECT_EQ(services.calls, std::vector<std::string>{"folder /t/caf\xC3\xA9"});
  EXPECT_EQ(scriptsBefore, 1U);
  reportDownload(3, 0.5F, false, 0);
  reportDownload(1, 50, true, 2);
  EXPECT_EQ(services.calls.size(), 3U);
}

TEST_F(EventRelays, OpenNoFolderWithoutAnythingInItOrWithoutAPage) {
  reportDownload(3, 0, false, 1);
  reportDownload(1, 100, false, 1);
  reportDownload(2, 50, true, 0);
  CUploadManager::GroupState upload;
  upload.state = 3;
  upload.percentTransferred = 100;
  transfers.uploadCallback->onGroupStateChanged(upload);
  browser->frame = nullptr;
  reportDownload(3, 100, false, 1);
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(EventRelays, OutliveAnEventThatThrows) {
  services.duringCall = [] { throw std::runtime_error("no folder"); };
  reportDownload(3, 100, false, 1);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"error runEvent: Exception: no folder"});
  services.duringCall = nullptr;
  reportDownload(3, 100, false, 1);
  EXPECT_EQ(scripts().size(), 2U);
}

TEST_F(EventRelays, UnsubscribeWhenTheyAreReleasedAndFinishWhatTheyHavePosted) {
  transfers.uploadCallback->onFileStateChanged(zt_transfers::FileState());
  relays.clear();
  EXPECT_EQ(transfers.uploadCallback, nullptr);
  EXPECT_EQ(transfers.downloadCallback, nullptr);
  EXPECT_EQ(transfers.managersAlive, 1);  // kept by the relay that has a task
  framework.runDueTasks();
  EXPECT_EQ(scripts().size(), 1U);
  EXPECT_EQ(transfers.managersAlive, 0);
}

// A relay that handles a process message.
class NoticingHandler : public CMessageHandlerBase {
 public:
  NoticingHandler() { registerMessage("notice", &NoticingHandler::notice); }

  std::vector<std::string> noticed;

 private:
  void notice(const CefRefPtr<CefListValue>& arguments) {
    noticed.push_back(arguments->GetString(0).ToString());
  }

  IMPLEMENT_REFCOUNTING(NoticingHandler);
};

TEST_F(EventRelays, CallTheOperationThatIsRegisteredForAProcessMessage) {
  const CefRefPtr<NoticingHandler> handler(new NoticingHandler);
  const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create("notice");
  message->GetArgumentList()->SetString(0, "argument");
  EXPECT_TRUE(handler->onMessage(message));
  EXPECT_EQ(handler->noticed, std::vector<std::string>{"argument"});
  EXPECT_FALSE(handler->onMessage(CefProcessMessage::Create("other")));
  EXPECT_FALSE(relays.onMessage(message));  // the transfer relays register none
}

}  // namespace
}  // namespace zantrio::messages
