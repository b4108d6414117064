#include <gtest/gtest.h>

#include <thread>

#include "bridge/query_handler_context.h"
#include "src/fakes/fake_browser.h"
#include "src/fakes/fake_framework.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
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

  FakeFramework framework;
  FakeTransfers& transfers = FakeTransfers::instance();
  FakeServices& services = FakeServices::instance();
  CefRefPtr<FakeBrowser> browser = new FakeBrowser;
  CMessageHandlerList& relays = CMessageHandlerList::instance();
};

TEST_F(EventRelays, CallThePageOnTheUiThreadOnly) {
  std::thread library([this] {
    CUploadManager::GroupState group;
    group.id = 3;
    group.bucketId = "b1";
    group.state = 4;
    transfers.uploadCallback->onGroupStateChanged(group);
  });
  library.join();
  EXPECT_TRUE(scripts().empty());
  framework.runDueTasks();
  ASSERT_EQ(scripts().size(), 1U);
  const auto& script = browser->frame->scripts[0];
  EXPECT_EQ(
      script.code.find(
          R"(_uploadManager_groupStateChanged({"bucketId":"b1","id":"3","state":{"bucketId")"),
      0U);
  EXPECT_NE(script.code.find(R"("type":"PAUSED"},"type":"PAUSED"})"
                             "\n);"),
            std::string::npos);
  EXPECT_EQ(script.url, browser->frame->url);
  EXPECT_EQ(script.line, 0);
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
  EXPECT_EQ(scripts()[2].find("_downloadManager_groupStateChanged({"), 0U);
  EXPECT_EQ(scripts()[2].find("marked"), std::string::npos);
}

TEST_F(EventRelays, KeepTheOrderOfReports) {
  std::thread library([this] {
    for (int i = 0; i < 1000; ++i) {
      zt_transfers::FileState file;
      file.groupId = i;
      transfers.uploadCallback->onFileStateChanged(file);
    }
  });
  library.join();
  framework.runDueTasks();
  ASSERT_EQ(scripts().size(), 1000U);
  for (int i = 0; i < 1000; ++i) {
    const std::string id = "\"id\":\"" + std::to_string(i) + "\"";
    ASSERT_NE(scripts()[static_cast<std::size_t>(i)].find(id), std::string::npos);
  }
}

TEST_F(EventRelays, DropEventsWithoutAMainFrame) {
  browser->frame = nullptr;
  reportDownload(3, 100, false, 1);
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(EventRelays, OpenTheFolderOfADownloadThatIsDone) {
  reportDownload(3, 100, false, 1);
  EXPECT_EQ(services.calls, std::vector<std::string>{"folder /t/caf\xC3\xA9"});
  reportDownload(3, 0.5F, false, 0);
  reportDownload(1, 50, true, 2);
  EXPECT_EQ(services.calls.size(), 3U);
}

TEST_F(EventRelays, OpenNoFolderWithoutAnythingInIt) {
  reportDownload(3, 0, false, 1);
  reportDownload(1, 100, false, 1);
  reportDownload(2, 50, true, 0);
  CUploadManager::GroupState upload;
  upload.state = 3;
  upload.percentTransferred = 100;
  transfers.uploadCallback->onGroupStateChanged(upload);
  framework.runDueTasks();
  EXPECT_TRUE(services.calls.empty());
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

TEST_F(EventRelays, TakeNoProcessMessages) {
  EXPECT_FALSE(relays.onMessage(CefProcessMessage::Create("nativeAppBridge_IPCMsg")));
}

}  // namespace
}  // namespace zantrio::messages
