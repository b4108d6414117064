#include "transfers/query_handler_download_manager.h"

#include <gtest/gtest.h>

#include "bridge/json_text.h"
#include "bridge/query_handler_context.h"
#include "src/fakes/ask_bridge.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "src/fakes/log_capture.h"
#include "src/files/temporary_folder.h"
#include "transfers/wide_text.h"

namespace zantrio {
namespace {

using test::FakeServices;
using test::FakeTransfers;
using test::LogCapture;

class DownloadBridge : public testing::Test {
 protected:
  DownloadBridge() {
    fake.reset();
    services.reset();
    QueryHandlerContext context;
    context.downloadManager = new zt_transfers::CDownloadManager;
    handler.setHandlerData(context);
  }

  std::string answer(const std::string& method, const std::string& parameters = "null") {
    return test::askBridge(handler, method, parameters);
  }

  // Asks for a group in the folder that the user chooses.
  std::string createGroup(const std::string& parameters) {
    services.chosenFolders = {"file://" + folder.path()};
    return answer("createGroup", parameters);
  }

  const test::TemporaryFolder folder;
  FakeTransfers& fake = FakeTransfers::instance();
  FakeServices& services = FakeServices::instance();
  LogCapture log;
  CQueryHandlerDownloadManager handler;
};

TEST_F(DownloadBridge, AnswersAndChangesItsConfiguration) {
  fake.downloadConfiguration.partSize = 77;
  const std::string expected =
      R"({"autoDownload":true,"maxConcurrentTransfers":3,"maxTransferRetries":5,)"
      R"("minMultipartSize":67108864,"preventSleep":true,"throttleBytesPerSecond":9,)"
      R"("verifyUploads":true})"
      "\n";
  EXPECT_EQ(
      answer("setConfiguration", R"({"maxConcurrentTransfers":3,"throttleBytesPerSecond":9,)"
                                 R"("serverTransferProgressInterval":5,"autoDownload":false})"),
      expected);
  EXPECT_EQ(answer("getConfiguration"), expected);
  EXPECT_EQ(fake.downloadConfiguration.maxConcurrentTransfers, 3U);
  EXPECT_EQ(fake.downloadConfiguration.partSize, 77U);
  EXPECT_EQ(answer("setConfiguration", R"({"maxTransferRetries":{}})").find("-1 Exception"), 0U);
}

TEST_F(DownloadBridge, ListsGroupsInTheLibrarysOrder) {
  EXPECT_EQ(answer("fetchGroupsState"), "[]\n");
  fake.downloadGroups.resize(2);
  fake.downloadGroups[0].id = 9;
  fake.downloadGroups[1].id = 4;
  Json::Value json;
  ASSERT_TRUE(parseJson(answer("fetchGroupsState"), json));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["id"], "9");
  EXPECT_EQ(json[1]["id"], "4");
  EXPECT_FALSE(json[1].isMember("marked"));
}

TEST_F(DownloadBridge, CreatesGroupsInTheFolderThatTheSummaryNames) {
  fake.createdGroup = 12;
  Json::Value json;
  ASSERT_TRUE(parseJson(createGroup(R"({"bucketId":"b","bucketType":"message","token":"t",)"
                                    R"("tokenExpires":99,"summary":"Grüße"})"),
                        json));
  EXPECT_EQ(json["id"], "12");
  EXPECT_EQ(json["state"]["id"], "12");
  EXPECT_EQ(fake.calls, std::vector<std::string>{"createGroup b message t 99"});
  const std::string path = folder.path() + "/Grüße";
  EXPECT_EQ(fake.downloadDirectory, widenBytes(path));
  EXPECT_TRUE(
      log.contains("information Creating download group. Bucket id: b, bucket type: message, "
                   "token: t, token expires: 99, download path: " +
                   path));
}

TEST_F(DownloadBridge, AnswersNullForAGroupWithoutAFolder) {
  EXPECT_EQ(answer("createGroup", R"({"bucketId":"b","summary":"s"})"), "null\n");
  EXPECT_TRUE(fake.calls.empty());
  EXPECT_EQ(log.lines().back(), "error Failed to obtain download path for bucket with id b");
}

TEST_F(DownloadBridge, AnswersNullForARefusedGroupAndANullStateForAnUnknownOne) {
  fake.createdGroup = -1;
  EXPECT_EQ(createGroup("null"), "null\n");
  fake.createdGroup = 5;
  fake.groupStateResult = 1;
  EXPECT_EQ(createGroup("null"), "{\"id\":\"5\",\"state\":null}\n");
}

TEST_F(DownloadBridge, AnswersAFailureForAGroupWhoseParametersCannotBeRead) {
  for (const char* parameters : {R"({"tokenExpires":"never"})", R"({"summary":{}})", "[]"}) {
    EXPECT_EQ(createGroup(parameters).find("-1 Exception caught when executing query handler: "),
              0U)
        << parameters;
  }
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(DownloadBridge, QueuesAndDequeuesFiles) {
  const std::string parameters =
      R"({"groupId":"12abc","files":[{"id":"a","path":"d/ä","size":"abc"},{"id":{}},{"id":"b"}]})";
  EXPECT_EQ(answer("queueFiles", parameters), "{}\n");
  ASSERT_EQ(fake.downloadFiles.size(), 2U);
  EXPECT_EQ(narrowToBytes(fake.downloadFiles[0].path), "d/ä");
  EXPECT_EQ(fake.downloadFiles[0].size, 0U);
  EXPECT_EQ(answer("dequeueFiles", parameters), "{}\n");
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"queueFiles 12", "dequeueFiles 12"}));
  EXPECT_TRUE(log.contains(
      "information QueryHandlerDownloadManager: Adding 2 files to the group with id 12"));
  EXPECT_TRUE(log.contains(
      "information QueryHandlerDownloadManager: Removing 2 files from the group with id 12"));
}

TEST_F(DownloadBridge, QueuesNothingForAListThatIsRejected) {
  EXPECT_EQ(answer("queueFiles", R"({"groupId":"1","files":[]})"), "{}\n");
  EXPECT_EQ(answer("dequeueFiles", R"({"files":{"a":1}})"), "{}\n");
  EXPECT_TRUE(fake.calls.empty());
  EXPECT_EQ(log.lines().back(),
            "information QueryHandlerDownloadManager: Removing 0 files from the group with id 0");
}

TEST_F(DownloadBridge, SteersGroupsAndAnswersNull) {
  const std::pair<const char*, const char*> methods[] = {
      {"pauseGroup", "Paused"}, {"resumeGroup", "Resumed"}, {"cancelGroup", "Canceled"}};
  for (const auto& [method, word] : methods) {
    EXPECT_EQ(answer(method, R"({"groupId":"7"})"), "null\n");
    EXPECT_EQ(fake.calls.back(), std::string(method) + " 7");
    EXPECT_EQ(log.lines().back(), std::string("information QueryHandlerDownloadManager: ") + word +
                                      " group with id: 7");
  }
}

TEST_F(DownloadBridge, StartsAndStopsTheManagerWithTheApplication) {
  Poco::Any data = handler.getHandlerData(2);
  auto* const events = Poco::AnyCast<IAppLifecycleEventsHandler*>(data);
  events->appStarted();
  events->appExiting();
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"download startup", "download shutdown"}));
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"information Starting up download manager",
                                                   "information Shutting down download manager"}));
  EXPECT_TRUE(handler.getHandlerData(1).empty());
}

TEST_F(DownloadBridge, AnswersAFailureBeforeItHasAManager) {
  handler.setHandlerData(QueryHandlerContext());
  EXPECT_EQ(answer("pauseGroup", R"({"groupId":"7"})").find("-1 Exception caught"), 0U);
  EXPECT_EQ(createGroup("null").find("-1 Exception caught"), 0U);
}

TEST_F(DownloadBridge, ListsItsMethods) {
  EXPECT_EQ(answer("supportedMethods"),
            R"(["cancelGroup","createGroup","dequeueFiles","fetchGroupsState","getConfiguration",)"
            R"("pauseGroup","queueFiles","resumeGroup","setConfiguration","supportedMethods"])"
            "\n");
}

}  // namespace
}  // namespace zantrio
