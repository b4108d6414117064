#include "transfers/record_json.h"

#include <gtest/gtest.h>

#include "bridge/json_text.h"
#include "transfers/state_names.h"

namespace zantrio {
namespace {

using zt_transfers::CDownloadManager;
using zt_transfers::CUploadManager;

TEST(StateNames, NumberGroupsAndFilesDifferently) {
  const char* const groups[] = {"UNKNWON",   "TRANSFERRING", "ERRORED",
                                "COMPLETED", "PAUSED",       "UNKNWON"};
  const char* const files[] = {"TRANSFERRING", "COMPLETED", "ERRORED",
                               "PAUSED",       "UNKNWON",   "UNKNWON"};
  for (int code = 0; code < 6; ++code) {
    EXPECT_STREQ(groupStateName(code), groups[code]) << code;
    EXPECT_STREQ(fileStateName(code), files[code]) << code;
  }
  EXPECT_STREQ(groupStateName(-1), "UNKNWON");
  EXPECT_STREQ(fileStateName(-1), "UNKNWON");
}

CUploadManager::GroupState uploadGroup() {
  CUploadManager::GroupState group;
  group.state = 4;
  group.bucketType = "message";
  group.id = 17;
  group.bucketId = "b\"1";
  group.bytesTransferred = 9'007'199'254'740'993;
  group.bytesTotal = 18'446'744'073'709'551'615U;
  group.bytesTransferredPerSecond = 3;
  group.percentTransferred = 0.1F;
  group.estimatedEta = 5;
  group.empty = false;
  group.paused = true;
  group.marked = true;
  return group;
}

const char* const kUploadGroup =
    R"({"bucketId":"b\"1","bucketType":"message","bytesTotal":18446744073709551615,)"
    R"("bytesTransferred":9007199254740993,"bytesTransferredPerSecond":3,"cancelled":false,)"
    R"("empty":false,"estimatedEta":5,"id":"17","marked":true,"paused":true,)"
    R"("percentTransferred":0.10000000149011612,"type":"PAUSED"})";

TEST(RecordJson, WritesUploadGroups) {
  Json::Value json;
  toJson(uploadGroup(), json);
  EXPECT_EQ(writeCompactJson(json), std::string(kUploadGroup) + "\n");
}

TEST(RecordJson, WritesDownloadGroupsWithoutMark) {
  CDownloadManager::GroupState group;
  group.id = -1;
  Json::Value json;
  toJson(group, json);
  EXPECT_FALSE(json.isMember("marked"));
  EXPECT_EQ(json["id"], "-1");
  EXPECT_EQ(json["type"], "UNKNWON");
  EXPECT_EQ(json.size(), 12U);
}

TEST(RecordJson, RepeatsTheMainMembersInGroupEvents) {
  EXPECT_EQ(writeCompactJson(groupEventToJson(uploadGroup())),
            R"({"bucketId":"b\"1","id":"17","state":)" + std::string(kUploadGroup) +
                R"(,"type":"PAUSED"})" + "\n");
}

TEST(RecordJson, WritesFilesWithTheirOwnSpelling) {
  zt_transfers::FileState file;
  file.groupId = 3;
  file.bucketId = "b1";
  file.fileId = "f";
  file.state = 1;
  file.bytesTransferred = 2;
  file.bytesTotal = 4;
  file.percentTransferred = 50;
  Json::Value json;
  toJson(file, json);
  EXPECT_EQ(writeCompactJson(json),
            R"({"bucketId":"b1","fileId":"f","id":"3","state":{"bytesTotal":4,)"
            R"("bytesTransfered":2,"percentTransferred":50.0,"type":"COMPLETED"},)"
            R"("type":"COMPLETED"})"
            "\n");
}

TEST(RecordJson, WritesConfigurations) {
  CUploadManager::Configuration configuration;
  configuration.maxConcurrentTransfers = 4'000'000'000U;
  configuration.minMultipartSize = 1ULL << 40;
  configuration.maxTransferRetries = 2;
  configuration.verifyUploads = false;
  configuration.preventSleep = true;
  configuration.throttleBytesPerSecond = 7;
  configuration.serverTransferProgressInterval = 9;
  Json::Value json;
  toJson(configuration, json);
  const std::string common = R"({"maxConcurrentTransfers":4000000000,"maxTransferRetries":2,)"
                             R"("minMultipartSize":1099511627776,"preventSleep":true,)";
  EXPECT_EQ(
      writeCompactJson(json),
      common +
          R"("serverTransferProgressInterval":9,"throttleBytesPerSecond":7,"verifyUploads":false})"
          "\n");
  Json::Value base;
  toJson(static_cast<const zt_transfers::CTransferManagerBase::Configuration&>(configuration),
         base);
  EXPECT_EQ(writeCompactJson(base), common + R"("throttleBytesPerSecond":7,"verifyUploads":false})"
                                             "\n");
}

}  // namespace
}  // namespace zantrio
