#include "transfers/transfer_json.h"

#include <gtest/gtest.h>

#include "bridge/json_text.h"
#include "support/log_capture.h"

namespace zantrio {
namespace {

using zt_transfers::CDownloadManager;
using zt_transfers::CUploadManager;

Json::Value json(const std::string& text) {
  Json::Value value;
  EXPECT_TRUE(parseJson(text, value)) << text;
  return value;
}

template <class Record>
std::string written(const Record& record) {
  Json::Value value;
  toJson(record, value);
  return writeCompactJson(value);
}

TEST(TransferJson, NumbersTheStatesOfGroupsAndFilesDifferently) {
  const char* const groups[] = {"UNKNWON",   "UNKNWON", "TRANSFERRING", "ERRORED",
                                "COMPLETED", "PAUSED",  "UNKNWON"};
  const char* const files[] = {"UNKNWON", "TRANSFERRING", "COMPLETED", "ERRORED",
                               "PAUSED",  "UNKNWON",      "UNKNWON"};
  for (int code = -1; code < 6; ++code) {
    CDownloadManager::GroupState group;
    group.state = code;
    EXPECT_EQ(groupEventToJson(group)["type"], groups[code + 1]) << code;
    zt_transfers::FileState file;
    file.state = code;
    Json::Value fileJson;
    toJson(file, fileJson);
    EXPECT_EQ(fileJson["type"], files[code + 1]) << code;
  }
}

TEST(TransferJson, WritesGroupsAndRepeatsTheMainMembersInEvents) {
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
  using Group = CUploadManager::GroupState;
  const std::pair<const char*, bool Group::*> flags[] = {{"paused", &Group::paused},
                                                         {"empty", &Group::empty},
                                                         {"cancelled", &Group::cancelled},
                                                         {"marked", &Group::marked}};
  for (const auto& [set, flag] : flags) {
    group.empty = false;
    group.*flag = true;
    const auto is = [name = std::string(set)](const char* other) {
      return name == other ? "true" : "false";
    };
    const std::string expected =
        R"({"bucketId":"b\"1","bucketType":"message","bytesTotal":18446744073709551615,)"
        R"("bytesTransferred":9007199254740993,"bytesTransferredPerSecond":3,"cancelled":)" +
        std::string(is("cancelled")) + R"(,"empty":)" + is("empty") +
        R"(,"estimatedEta":5,"id":"17","marked":)" + is("marked") + R"(,"paused":)" + is("paused") +
        R"(,"percentTransferred":0.10000000149011612,"type":"PAUSED"})";
    EXPECT_EQ(
        writeCompactJson(groupEventToJson(group)),
        R"({"bucketId":"b\"1","id":"17","state":)" + expected + R"(,"type":"PAUSED"})" + "\n");
    group.*flag = false;
  }
}

TEST(TransferJson, ReadsAndWritesEverySettingOfAConfiguration) {
  const std::string text =
      R"({"maxConcurrentTransfers":4000000000,"maxTransferRetries":2,)"
      R"("minMultipartSize":1099511627776,"preventSleep":false,)"
      R"("serverTransferProgressInterval":7,"throttleBytesPerSecond":7,"verifyUploads":false})"
      "\n";
  CUploadManager::Configuration configuration;
  configuration.proxy = "p";
  fromJson(json(text), configuration);
  EXPECT_EQ(written(configuration), text);
  fromJson(json("{}"), configuration);
  EXPECT_EQ(written(configuration), text);
  EXPECT_EQ(configuration.proxy, "p");
  fromJson(json(R"({"verifyUploads":true})"), configuration);
  EXPECT_TRUE(configuration.verifyUploads);
  EXPECT_FALSE(configuration.preventSleep);
}

TEST(TransferJson, TakesTheProgressIntervalFromTheThrottle) {
  CUploadManager::Configuration configuration;
  configuration.serverTransferProgressInterval = 8;
  fromJson(json(R"({"throttleBytesPerSecond":700})"), configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 8U);
  fromJson(json(R"({"serverTransferProgressInterval":5,"throttleBytesPerSecond":900})"),
           configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 900U);
  fromJson(json(R"({"serverTransferProgressInterval":5})"), configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 0U);
  EXPECT_EQ(configuration.throttleBytesPerSecond, 900U);
}

TEST(TransferJson, RejectsSettingsThatCannotBeConverted) {
  CUploadManager::Configuration configuration;
  for (const char* text :
       {R"({"maxTransferRetries":"many"})", R"({"maxTransferRetries":-1})", "[]"}) {
    EXPECT_THROW(fromJson(json(text), configuration), Json::Exception) << text;
  }
}

TEST(TransferJson, ReadsFilesToUpload) {
  CUploadManager::FileDesc file;
  ASSERT_TRUE(fromJson(json(R"({"id":"f1","fileURL":"file:///é","uploadDetails":{"url":"http://u",)"
                            R"("headers":{"B":"2","A":"1","C":3}}})"),
                       file));
  EXPECT_EQ(file.fileId, "f1");
  EXPECT_EQ(narrowToBytes(file.fileURL), "file:///é");
  EXPECT_EQ(file.fileURL.size(), 10U);  // a wide character for each byte
  EXPECT_EQ(file.url, "http://u");
  EXPECT_EQ(file.headers,
            (std::vector<std::pair<std::string, std::string>>{{"A", "1"}, {"B", "2"}}));
  CUploadManager::FileDesc bare;
  EXPECT_TRUE(fromJson(json("{}"), bare));
  EXPECT_EQ(bare.fileId, "");
}

TEST(TransferJson, ReadsFilesToDownloadWithZeroForCountsThatAreNone) {
  CDownloadManager::FileDownloadDetails file;
  ASSERT_TRUE(fromJson(json(R"({"id":"f","path":"a/b.txt","size":5,"modified":6,)"
                            R"("md5Digest":"d","downloadDetails":{"url":"u","expires":7}})"),
                       file));
  EXPECT_EQ(file.fileId, "f");
  EXPECT_EQ(file.path, L"a/b.txt");
  EXPECT_EQ(file.size, 5U);
  EXPECT_EQ(file.modified, 6U);
  EXPECT_EQ(file.md5Digest, "d");
  EXPECT_EQ(file.url, "u");
  EXPECT_EQ(file.expires, 7U);
  EXPECT_TRUE(fromJson(json(R"({"id":"f","size":"abc","modified":-1})"), file));
  EXPECT_EQ(file.size, 0U);
  EXPECT_EQ(file.modified, 0U);
}

TEST(TransferJson, KeepsWhatItCouldReadOfDownloadDetails) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"downloadDetails":"soon"})", ""},
      {R"({"downloadDetails":{"url":"u","expires":"soon"}})", "u"},
  };
  for (const auto& [text, url] : cases) {
    const test::LogCapture log;
    CDownloadManager::FileDownloadDetails file;
    EXPECT_TRUE(fromJson(json(text), file));
    EXPECT_EQ(file.url, url);
    EXPECT_EQ(file.expires, 0U);
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.lines()[0].starts_with(
        "error Exception caught when trying to obtain download url from json: "));
  }
}

TEST(TransferJson, ReadsTheUsableElementsOfAFileListInOrder) {
  std::vector<CUploadManager::FileDesc> files;
  for (const char* text : {"null", "[]", "{}", R"("x")", "{\"0\":{}}"}) {
    EXPECT_FALSE(filesFromJson(json(text), files)) << text;
  }
  EXPECT_TRUE(filesFromJson(json(R"([{"id":"a"},5,{"id":{}},{"id":"b"}])"), files));
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].fileId, "a");
  EXPECT_EQ(files[1].fileId, "b");
}

TEST(TransferJson, ReadsTheGroupIdFromTheBeginningOfItsText) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {R"({"groupId":"12abc"})", 12},
      {R"({"groupId":" -3"})", -3},
      {R"({"groupId":"x"})", 0},
      {R"({"groupId":""})", 0},
      {"{}", 0},
      {"null", 0},
  };
  for (const auto& [text, id] : cases) {
    EXPECT_EQ(groupIdFromJson(json(text)), id) << text;
  }
}

}  // namespace
}  // namespace zantrio
