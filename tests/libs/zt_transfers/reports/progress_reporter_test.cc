#include "reports/progress_reporter.h"

#include <gmock/gmock.h>
#include <json/json.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "base/wide_bytes.h"
#include "http/http_loop.h"
#include "upload_fixture.h"
#include "zt_transfers/download_manager.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// The service is the same server as the storage.
class ProgressReporter : public CUploadTest {
 protected:
  static constexpr const char* kPlace = "/api/messages/bucket/progress";

  void SetUp() override {
    CUploadTest::SetUp();
    CZtTransfersGlobalConfig::getInstance()->setRestEndPointUrl(server.url(""));
    reportEvery(3600);
  }
  void TearDown() override {
    CUploadTest::TearDown();
    CZtTransfersGlobalConfig::getInstance()->setRestEndPointUrl("");
  }
  void reportEvery(std::uint32_t seconds) {
    auto configuration = manager.getConfiguration();
    configuration.serverTransferProgressInterval = seconds;
    configuration.maxTransferRetries = 0;
    manager.setConfiguration(configuration);
  }
  // The last report, once it has this state and is accepted.
  Json::Value report(
      const std::string& state,
      const std::function<bool(const Json::Value&)>& accepts = [](const auto&) { return true; }) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < until) {
      Json::Value json;
      Json::Reader().parse(server.object(kPlace).value_or("{}"), json);
      if (json["state"].asString() == state && accepts(json)) {
        return json;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ADD_FAILURE() << "no report of " << state;
    return {};
  }
};

TEST_F(ProgressReporter, TellsEachChangeOfAGroupsStateAndWhyFilesFailed) {
  server.plan("/bad", {fault::status(403)});
  const auto group = upload({describe("good", "12345"), describe("bad", "12")});
  const Json::Value errored = report("ERRORED");
  EXPECT_EQ(errored["direction"].asString(), "upload");
  EXPECT_EQ(errored["group"].asString(), std::to_string(group));
  EXPECT_EQ(errored["bytesTransferred"].asUInt(), 5U);
  EXPECT_EQ(errored["bytesTotal"].asUInt(), 7U);
  EXPECT_EQ(errored["filesFailed"].asUInt(), 1U);
  ASSERT_EQ(errored["failures"].size(), 1U);
  EXPECT_EQ(errored["failures"][0]["fileId"].asString(), "bad");
  EXPECT_EQ(errored["failures"][0]["code"].asString(), "refused");
  EXPECT_EQ(errored["failures"][0]["reason"].asString(), "the server answered 403");
  const auto request = server.requestsTo(kPlace).at(0);
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.headers.at("x-zantrio-token"), "secret-token");
  manager.pauseGroup(group);
  report("ERRORED");
  manager.resumeGroup(group);
  EXPECT_TRUE(report("COMPLETED")["failures"].empty());
  manager.shutdown();
  EXPECT_THAT(log(), Not(HasSubstr("secret-token")));
}

TEST_F(ProgressReporter, TellsAfterARestartWhyFilesHadFailed) {
  server.plan("/bad", {fault::status(404)});
  const auto group = upload({describe("bad", "12")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupErrored));
  manager.shutdown();
  server.put(kPlace, "{}");
  CUploadManager next;
  next.setConfiguration(manager.getConfiguration());
  next.startup();
  EXPECT_EQ(report("ERRORED")["failures"][0]["reason"].asString(), "the server answered 404");
}

TEST_F(ProgressReporter, TellsEverySoOftenWhileSomethingIsTransferredAndWhatItWaitsFor) {
  auto away = describe("away", "x");
  away.url = "http://127.0.0.1:1/away";
  upload({away});
  const Json::Value waiting =
      report("TRANSFERRING", [](const Json::Value& json) { return json.isMember("waitingFor"); });
  EXPECT_EQ(waiting["waitingFor"]["code"].asString(), "cannot_connect");
  const std::size_t before = server.requestsTo(kPlace).size();
  reportEvery(1);  // holds at once
  EXPECT_TRUE(server.waitForRequests(before + 2));
}

TEST_F(ProgressReporter, TellsNothingWithoutAnInterval) {
  reportEvery(0);
  const auto group = upload({describe("file", "x")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  reportEvery(3600);  // from now on, and of what has happened
  report("COMPLETED");
  EXPECT_EQ(server.requestsTo(kPlace).size(), 1U);
}

TEST_F(ProgressReporter, HoldsUpNeitherTransfersNorTheShutdownWhenTheServiceHangs) {
  auto configuration = manager.getConfiguration();
  configuration.maxConcurrentTransfers = 1;
  manager.setConfiguration(configuration);
  server.plan(kPlace, {fault::stall()});
  const auto group = upload({describe("one", "x"), describe("two", "y")});
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  const auto begin = std::chrono::steady_clock::now();
  manager.shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  EXPECT_LE(server.requestsTo(kPlace).size(), 1U);
}

TEST_F(ProgressReporter, SaysOnceThatTheServiceTakesNoReports) {
  for (int at = 0; at < 4; ++at) {
    server.plan(kPlace, {fault::status(404), fault::status(404), fault::status(404)});
  }
  const auto group = upload({describe("one", "x")});
  ASSERT_TRUE(waitForLog("cannot be told how far uploads are: the service answered 404"));
  const std::size_t first = log().find("cannot be told how far");
  manager.pauseGroup(group);
  manager.unmarkQueue(group);
  ASSERT_TRUE(server.waitForRequests(3));
  manager.shutdown();
  EXPECT_EQ(log().find("cannot be told how far", first + 1), std::string::npos);
}

TEST_F(ProgressReporter, FollowsTheIntervalOfUploadsForDownloads) {
  CDownloadManager downloads;
  const auto group = downloads.createGroup("bucket", "message", "reading-token", 0,
                                           widened(sandbox.folder().string()));
  CDownloadManager::FileDownloadDetails file;
  file.fileId = "f";
  file.path = L"../f";
  file.url = server.url("/f");
  downloads.queueFiles(group, {file});
  downloads.startup();
  const Json::Value errored = report("ERRORED");
  EXPECT_EQ(errored["direction"].asString(), "download");
  EXPECT_EQ(errored["failures"][0]["code"].asString(), "unsafe_path");
}

TEST(ReportInterval, HoldsAtOnceForEveryManager) {
  const CSystemClock clock;
  CHttpLoop loop("zt-net-test", clock);
  std::promise<void> begun;
  std::promise<void> changed;
  CReportInterval::shared().join(loop);
  loop.start(
      [&, turns = 0]() mutable {
        if (turns++ < 2) {
          (turns == 1 ? begun : changed).set_value();
        }
        return std::nullopt;
      },
      [] {});
  begun.get_future().wait();
  CReportInterval::shared().set(std::chrono::seconds(7));
  EXPECT_EQ(changed.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
  CReportInterval::shared().leave(loop);
  CReportInterval::shared().set({});
}

}  // namespace
}  // namespace zt_transfers::test
