#include "transfers/query_handler_upload_manager.h"

#include <gtest/gtest.h>

#include "bridge/json_text.h"
#include "bridge/query_handler_context.h"
#include "src/fakes/ask_bridge.h"
#include "src/fakes/fake_transfers.h"
#include "src/fakes/log_capture.h"

namespace zantrio {
namespace {

using test::FakeTransfers;
using test::LogCapture;

class UploadBridge : public testing::Test {
 protected:
  UploadBridge() {
    fake.reset();
    QueryHandlerContext context;
    context.uploadManager = new zt_transfers::CUploadManager;
    handler.setHandlerData(context);
  }

  std::string answer(const std::string& method, const std::string& parameters = "null") {
    return test::askBridge(handler, method, parameters);
  }

  FakeTransfers& fake = FakeTransfers::instance();
  LogCapture log;
  CQueryHandlerUploadManager handler;
};

TEST_F(UploadBridge, AnswersItsConfiguration) {
  Json::Value json;
  ASSERT_TRUE(parseJson(answer("getConfiguration"), json));
  EXPECT_EQ(json.size(), 7U);
  EXPECT_TRUE(json.isMember("serverTransferProgressInterval"));
}

TEST_F(UploadBridge, ChangesItsConfigurationAndAnswersTheNewOne) {
  fake.uploadConfiguration.partSize = 77;
  Json::Value json;
  ASSERT_TRUE(parseJson(answer("setConfiguration", R"({"maxConcurrentTransfers":3})"), json));
  EXPECT_EQ(json["maxConcurrentTransfers"].asUInt(), 3U);
  EXPECT_EQ(fake.uploadConfiguration.maxConcurrentTransfers, 3U);
  EXPECT_EQ(fake.uploadConfiguration.partSize, 77U);
}

TEST_F(UploadBridge, LeavesTheConfigurationWhenAKeyCannotBeConverted) {
  EXPECT_EQ(answer("setConfiguration", R"({"maxConcurrentTransfers":3,"maxTransferRetries":{}})")
                .find("-1 Exception caught"),
            0U);
  EXPECT_EQ(fake.uploadConfiguration.maxConcurrentTransfers, 8U);
}

TEST_F(UploadBridge, ListsGroupsInTheLibrarysOrder) {
  EXPECT_EQ(answer("fetchGroupsState"), "[]\n");
  fake.uploadGroups.resize(2);
  fake.uploadGroups[0].id = 9;
  fake.uploadGroups[1].id = 4;
  Json::Value json;
  ASSERT_TRUE(parseJson(answer("fetchGroupsState"), json));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["id"], "9");
  EXPECT_EQ(json[1]["id"], "4");
  EXPECT_TRUE(json[1].isMember("marked"));
}

TEST_F(UploadBridge, CreatesGroups) {
  fake.createdGroup = 12;
  Json::Value json;
  ASSERT_TRUE(
      parseJson(answer("createGroup",
                       R"({"bucketId":"b","bucketType":"message","token":"t","tokenExpires":99})"),
                json));
  EXPECT_EQ(json["id"], "12");
  EXPECT_EQ(json["state"]["id"], "12");
  EXPECT_EQ(fake.calls, std::vector<std::string>{"createGroup b message t 99"});
  EXPECT_TRUE(
      log.contains("information Creating upload group. Bucket id: b, bucket type: message, token: "
                   "t, token expires: 99"));
}

TEST_F(UploadBridge, AnswersNullsForAGroupThatIsRefusedOrUnknown) {
  fake.createdGroup = -1;
  EXPECT_EQ(answer("createGroup"), "{\"id\":null,\"state\":null}\n");
  fake.createdGroup = 5;
  fake.groupStateResult = 1;
  EXPECT_EQ(answer("createGroup"), "{\"id\":\"5\",\"state\":null}\n");
}

TEST_F(UploadBridge, AnswersNullsWhenAParameterCannotBeRead) {
  EXPECT_EQ(answer("createGroup", R"({"tokenExpires":"never"})"), "{\"id\":null,\"state\":null}\n");
  EXPECT_EQ(log.lines().back().find("error createGroup: Exception: "), 0U);
  EXPECT_TRUE(fake.calls.empty());
}

TEST_F(UploadBridge, QueuesAndDequeuesFiles) {
  const std::string parameters = R"({"groupId":"12abc","files":[{"id":"a"},{"id":"b"}]})";
  EXPECT_EQ(answer("queueFiles", parameters), "{}\n");
  ASSERT_EQ(fake.uploadFiles.size(), 2U);
  EXPECT_EQ(answer("dequeueFiles", parameters), "{}\n");
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"queueFiles 12", "dequeueFile 12"}));
  EXPECT_TRUE(log.contains(
      "information QueryHandlerUploadManager: Adding 2 files to the group with id 12"));
  EXPECT_TRUE(log.contains(
      "information QueryHandlerUploadManager: Removing 2 files from the group with id 12"));
}

TEST_F(UploadBridge, QueuesNothingForAListThatIsRejected) {
  EXPECT_EQ(answer("queueFiles", R"({"groupId":"1","files":[]})"), "{}\n");
  EXPECT_EQ(answer("dequeueFiles", R"({"groupId":"1"})"), "{}\n");
  EXPECT_TRUE(fake.calls.empty());
  EXPECT_TRUE(
      log.contains("information QueryHandlerUploadManager: Adding 0 files to the group with id 1"));
}

TEST_F(UploadBridge, SteersGroups) {
  const std::pair<const char*, const char*> methods[] = {{"markQueue", "Marked"},
                                                         {"unmarkQueue", "Unmarked"},
                                                         {"pauseGroup", "Paused"},
                                                         {"resumeGroup", "Resumed"},
                                                         {"cancelGroup", "Canceled"}};
  for (const auto& [method, word] : methods) {
    EXPECT_EQ(answer(method, R"({"groupId":"7"})"), "{}\n");
    EXPECT_EQ(fake.calls.back(), std::string(method) + " 7");
    EXPECT_EQ(log.lines().back(),
              std::string("information QueryHandlerUploadManager: ") + word + " group with id: 7");
  }
}

TEST_F(UploadBridge, StartsAndStopsTheManagerWithTheApplication) {
  Poco::Any data = handler.getHandlerData(2);
  auto* const events = Poco::AnyCast<IAppLifecycleEventsHandler*>(data);
  events->appStarted();
  events->appExiting();
  EXPECT_EQ(fake.calls, (std::vector<std::string>{"upload startup", "upload shutdown"}));
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"information Starting up Upload Manager",
                                                   "information Shutting down Upload Manager"}));
  EXPECT_TRUE(handler.getHandlerData(1).empty());
}

TEST_F(UploadBridge, AnswersAFailureBeforeItHasAManager) {
  handler.setHandlerData(QueryHandlerContext());
  EXPECT_EQ(answer("pauseGroup", R"({"groupId":"7"})").find("-1 Exception caught"), 0U);
  EXPECT_EQ(answer("createGroup"), "{\"id\":null,\"state\":null}\n");
}

}  // namespace
}  // namespace zantrio
