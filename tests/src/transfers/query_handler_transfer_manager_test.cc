// The bridges of the upload and the download manager.
#include "transfers/query_handler_transfer_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bridge/json_text.h"
#include "bridge/query_handler_context.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "support/log_capture.h"
#include "support/temporary_folder.h"
#include "transfers/query_handler_download_manager.h"
#include "transfers/query_handler_upload_manager.h"
#include "transfers/transfer_json.h"

namespace zantrio {
namespace {

using test::askBridge;
using test::FakeServices;
using test::FakeTransfers;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kFailure = "-1 Exception caught when executing query handler: ";

class Bridges : public testing::Test {
 protected:
  Bridges() {
    fake.reset();
    services.reset();
    fake.uploadConfiguration.partSize = 77;
    fake.downloadConfiguration.partSize = 77;
    QueryHandlerContext context;
    context.uploadManager = new zt_transfers::CUploadManager;
    context.downloadManager = new zt_transfers::CDownloadManager;
    uploads.setHandlerData(context);
    downloads.setHandlerData(context);
  }

  static Json::Value parsed(const std::string& answer) {
    Json::Value json;
    EXPECT_TRUE(parseJson(answer, json)) << answer;
    return json;
  }

  // For a group of downloads in the folder that the user chooses.
  std::string createDownload(const std::string& parameters) {
    services.choices = {{"file://" + folder.path()}};
    return askBridge(downloads, "createGroup", parameters);
  }

  const test::TemporaryFolder folder;
  FakeTransfers& fake = FakeTransfers::instance();
  FakeServices& services = FakeServices::instance();
  test::LogCapture log;
  CQueryHandlerUploadManager uploads;
  CQueryHandlerDownloadManager downloads;
};

// The differences between the two bridges.
struct Side {
  bool isUpload;
  const char* logPrefix;
  const char* dequeue;  // the manager's name for it
  const char* steered;  // the response once a group was changed
  std::vector<std::pair<const char*, const char*>> steering;  // methods and log words
  std::vector<std::string> life;
  std::vector<std::string> lifeLines;
  const char* configuration;
};

void PrintTo(const Side& side, std::ostream* out) {
  *out << side.logPrefix;
}

class BothBridges : public Bridges, public testing::WithParamInterface<Side> {
 protected:
  CQueryHandlerBase& handler() {
    return side.isUpload ? static_cast<CQueryHandlerBase&>(uploads) : downloads;
  }
  std::string answer(const std::string& method, const std::string& parameters = "null") {
    return askBridge(handler(), method, parameters);
  }
  std::string logged(const std::string& text) const {
    return "information " + std::string(side.logPrefix) + ": " + text;
  }

  const Side& side = GetParam();
};

TEST_P(BothBridges, ListGroupsInTheLibrarysOrder) {
  EXPECT_EQ(answer("fetchGroupsState"), "[]\n");
  fake.uploadGroups.resize(2);
  fake.uploadGroups[0].id = 9;
  fake.uploadGroups[1].id = 4;
  fake.downloadGroups.resize(2);
  fake.downloadGroups[0].id = 9;
  fake.downloadGroups[1].id = 4;
  const Json::Value json = parsed(answer("fetchGroupsState"));
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["id"], "9");
  EXPECT_EQ(json[1]["id"], "4");
  EXPECT_EQ(json[1].isMember("marked"), side.isUpload);
}

TEST_P(BothBridges, QueueAndDequeueFiles) {
  const std::string parameters =
      R"({"groupId":"12abc","files":[{"id":"a","path":"d/ä","size":"abc"},{"id":{}},{"id":"b"}]})";
  EXPECT_EQ(answer("queueFiles", parameters), "{}\n");
  EXPECT_EQ(side.isUpload ? fake.uploadFiles.size() : fake.downloadFiles.size(), 2U);
  EXPECT_EQ(answer("dequeueFiles", parameters), "{}\n");
  EXPECT_THAT(fake.calls, ElementsAre("queueFiles 12", side.dequeue + std::string(" 12")));
  EXPECT_TRUE(log.contains(logged("Adding 2 files to the group with id 12")));
  EXPECT_TRUE(log.contains(logged("Removing 2 files from the group with id 12")));
}

TEST_P(BothBridges, QueueNothingForAListThatIsRejected) {
  EXPECT_EQ(answer("queueFiles", R"({"groupId":"1","files":[]})"), "{}\n");
  EXPECT_EQ(answer("dequeueFiles", R"({"files":{"a":1}})"), "{}\n");
  EXPECT_THAT(fake.calls, IsEmpty());
  EXPECT_TRUE(log.contains(logged("Adding 0 files to the group with id 1")));
  EXPECT_EQ(log.lines().back(), logged("Removing 0 files from the group with id 0"));
}

TEST_P(BothBridges, SteerGroups) {
  for (const auto& [method, word] : side.steering) {
    EXPECT_EQ(answer(method, R"({"groupId":"7"})"), side.steered);
    EXPECT_EQ(fake.calls.back(), std::string(method) + " 7");
    EXPECT_EQ(log.lines().back(), logged(word + std::string(" group with id: 7")));
  }
}

TEST_P(BothBridges, StartAndStopTheManagerWithTheApplication) {
  Poco::Any data = handler().getHandlerData(2);
  auto* const events = Poco::AnyCast<IAppLifecycleEventsHandler*>(data);
  events->appStarted();
  events->appExiting();
  EXPECT_EQ(fake.calls, side.life);
  EXPECT_EQ(log.lines(), side.lifeLines);
  EXPECT_TRUE(handler().getHandlerData(1).empty());
}

TEST_P(BothBridges, AnswerAFailureBeforeTheyHaveAManager) {
  handler().setHandlerData(QueryHandlerContext());
  EXPECT_THAT(answer("pauseGroup", R"({"groupId":"7"})"), StartsWith("-1 Exception caught"));
}

TEST_P(BothBridges, ChangeTheGivenSettingsOnly) {
  const std::string expected = side.configuration + std::string("\n");
  EXPECT_EQ(answer("setConfiguration",
                   R"({"maxConcurrentTransfers":3,"maxTransferRetries":2,"autoDownload":false})"),
            expected);
  EXPECT_EQ(answer("getConfiguration"), expected);
  const zt_transfers::CTransferManagerBase::Configuration& changed =
      side.isUpload ? fake.uploadConfiguration : fake.downloadConfiguration;
  EXPECT_EQ(changed.maxConcurrentTransfers, 3U);
  EXPECT_EQ(changed.maxTransferRetries, 2U);
  EXPECT_EQ(changed.partSize, 77U);
  EXPECT_THAT(answer("setConfiguration", R"({"maxConcurrentTransfers":4,"maxTransferRetries":{}})"),
              StartsWith(kFailure));
  EXPECT_EQ(answer("getConfiguration"), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Transfers, BothBridges,
    testing::Values(
        Side{true,
             "QueryHandlerUploadManager",
             "dequeueFile",
             "{}\n",
             {{"markQueue", "Marked"},
              {"unmarkQueue", "Unmarked"},
              {"pauseGroup", "Paused"},
              {"resumeGroup", "Resumed"},
              {"cancelGroup", "Canceled"}},
             {"upload startup", "upload shutdown"},
             {"information Starting up Upload Manager", "information Shutting down Upload Manager"},
             R"({"maxConcurrentTransfers":3,"maxTransferRetries":2,"minMultipartSize":67108864,)"
             R"("preventSleep":true,"serverTransferProgressInterval":0,)"
             R"("throttleBytesPerSecond":0,"verifyUploads":true})"},
        Side{false,
             "QueryHandlerDownloadManager",
             "dequeueFiles",
             "null\n",
             {{"pauseGroup", "Paused"}, {"resumeGroup", "Resumed"}, {"cancelGroup", "Canceled"}},
             {"download startup", "download shutdown"},
             {"information Starting up download manager",
              "information Shutting down download manager"},
             R"({"autoDownload":true,"maxConcurrentTransfers":3,"maxTransferRetries":2,)"
             R"("minMultipartSize":67108864,"preventSleep":true,"throttleBytesPerSecond":0,)"
             R"("verifyUploads":true})"}));

TEST_F(Bridges, OfUploadsCreatesGroups) {
  fake.createdGroup = 12;
  const Json::Value json =
      parsed(askBridge(uploads, "createGroup",
                       R"({"bucketId":"b","bucketType":"message","token":"t","tokenExpires":99})"));
  EXPECT_EQ(json["id"], "12");
  EXPECT_EQ(json["state"]["id"], "12");
  EXPECT_THAT(fake.calls, ElementsAre("createGroup b message t 99"));
  EXPECT_TRUE(
      log.contains("information Creating upload group. Bucket id: b, bucket type: message, token: "
                   "t, token expires: 99"));
}

TEST_F(Bridges, OfUploadsAnswersNullsForAGroupThatCannotBeCreatedOrIsUnknown) {
  const std::string nulls = "{\"id\":null,\"state\":null}\n";
  fake.createdGroup = -1;
  EXPECT_EQ(askBridge(uploads, "createGroup"), nulls);
  const std::string unknownState = "{\"id\":\"5\",\"state\":null}\n";
  fake.createdGroup = 5;
  fake.groupStateResult = 1;
  EXPECT_EQ(askBridge(uploads, "createGroup"), unknownState);
  fake.groupStateThrows = true;
  EXPECT_EQ(askBridge(uploads, "createGroup"), unknownState);
  EXPECT_EQ(log.lines().back(), "error createGroup: Exception: no state");
  fake.calls.clear();
  EXPECT_EQ(askBridge(uploads, "createGroup", R"({"tokenExpires":"never"})"), nulls);
  EXPECT_THAT(log.lines().back(), StartsWith("error createGroup: Exception: "));
  EXPECT_THAT(fake.calls, IsEmpty());
  uploads.setHandlerData(QueryHandlerContext());
  EXPECT_EQ(askBridge(uploads, "createGroup"), nulls);
}

TEST_F(Bridges, OfDownloadsCreatesGroupsInTheFolderThatTheSummaryNames) {
  fake.createdGroup = 12;
  const Json::Value json =
      parsed(createDownload(R"({"bucketId":"b","bucketType":"message","token":"t",)"
                            R"("tokenExpires":99,"summary":"Grüße"})"));
  EXPECT_EQ(json["id"], "12");
  EXPECT_EQ(json["state"]["id"], "12");
  EXPECT_THAT(fake.calls, ElementsAre("createGroup b message t 99"));
  const std::string path = folder.path() + "/Grüße";
  EXPECT_EQ(fake.downloadDirectory, widenBytes(path));
  EXPECT_TRUE(
      log.contains("information Creating download group. Bucket id: b, bucket type: message, "
                   "token: t, token expires: 99, download path: " +
                   path));
}

TEST_F(Bridges, OfDownloadsAnswersNullForAGroupThatCannotBeCreatedOrIsUnknown) {
  EXPECT_EQ(askBridge(downloads, "createGroup", R"({"bucketId":"b","summary":"s"})"), "null\n");
  EXPECT_THAT(fake.calls, IsEmpty());
  EXPECT_EQ(log.lines().back(), "error Failed to obtain download path for bucket with id b");
  fake.createdGroup = -1;
  EXPECT_EQ(createDownload("null"), "null\n");
  fake.createdGroup = 5;
  fake.groupStateResult = 1;
  EXPECT_EQ(createDownload("null"), "{\"id\":\"5\",\"state\":null}\n");
}

TEST_F(Bridges, OfDownloadsAnswersAFailureForAGroupWhoseParametersCannotBeRead) {
  for (const char* parameters : {R"({"tokenExpires":"never"})", R"({"token":{}})", "[]"}) {
    EXPECT_THAT(createDownload(parameters), StartsWith(kFailure)) << parameters;
  }
  EXPECT_THAT(services.calls, IsEmpty());
  downloads.setHandlerData(QueryHandlerContext());
  EXPECT_THAT(createDownload("null"), StartsWith("-1 Exception caught"));
}

}  // namespace
}  // namespace zantrio
