#include "transfers/json_record.h"

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

TEST(ConfigurationFromJson, OverwritesOnlyWhatIsThere) {
  CUploadManager::Configuration configuration;
  configuration.maxTransferRetries = 9;
  configuration.proxy = "p";
  fromJson(json(R"({"maxConcurrentTransfers":3,"verifyUploads":false,"preventSleep":0,)"
                R"("minMultipartSize":1099511627776,"throttleBytesPerSecond":11})"),
           configuration);
  EXPECT_EQ(configuration.maxConcurrentTransfers, 3U);
  EXPECT_EQ(configuration.maxTransferRetries, 9U);
  EXPECT_EQ(configuration.minMultipartSize, 1ULL << 40);
  EXPECT_EQ(configuration.throttleBytesPerSecond, 11U);
  EXPECT_FALSE(configuration.verifyUploads);
  EXPECT_FALSE(configuration.preventSleep);
  EXPECT_EQ(configuration.proxy, "p");
  EXPECT_EQ(configuration.serverTransferProgressInterval, 0U);
}

TEST(ConfigurationFromJson, TakesTheIntervalFromTheThrottle) {
  CUploadManager::Configuration configuration;
  configuration.serverTransferProgressInterval = 8;
  fromJson(json(R"({"throttleBytesPerSecond":700})"), configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 8U);
  fromJson(json(R"({"serverTransferProgressInterval":5,"throttleBytesPerSecond":700})"),
           configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 700U);
  fromJson(json(R"({"serverTransferProgressInterval":5})"), configuration);
  EXPECT_EQ(configuration.serverTransferProgressInterval, 0U);
  EXPECT_EQ(configuration.throttleBytesPerSecond, 700U);
}

TEST(ConfigurationFromJson, ThrowsForWhatCannotBeConverted) {
  CUploadManager::Configuration configuration;
  EXPECT_THROW(fromJson(json(R"({"maxTransferRetries":"many"})"), configuration), Json::Exception);
  EXPECT_THROW(fromJson(json(R"({"maxTransferRetries":-1})"), configuration), Json::Exception);
  EXPECT_THROW(fromJson(json("[]"), configuration), Json::Exception);
}

TEST(UploadFileFromJson, ReadsDetailsAndSkipsHeadersThatAreNoText) {
  CUploadManager::FileDesc file;
  ASSERT_TRUE(
      fromJson(json(R"({"id":"f1","fileURL":"file:///t%20x","uploadDetails":{"url":"http://u",)"
                    R"("headers":{"B":"2","A":"1","C":3}}})"),
               file));
  EXPECT_EQ(file.fileId, "f1");
  EXPECT_EQ(file.fileURL, L"file:///t%20x");
  EXPECT_EQ(file.url, "http://u");
  EXPECT_EQ(file.headers,
            (std::vector<std::pair<std::string, std::string>>{{"A", "1"}, {"B", "2"}}));
}

TEST(UploadFileFromJson, NeedsNoDetailsAndWidensTheUrlByteByByte) {
  CUploadManager::FileDesc file;
  EXPECT_TRUE(fromJson(json("{}"), file));
  EXPECT_EQ(file.fileId, "");
  EXPECT_TRUE(file.headers.empty());
  ASSERT_TRUE(fromJson(json(R"({"fileURL":"é"})"), file));
  ASSERT_EQ(file.fileURL.size(), 2U);
  EXPECT_EQ(file.fileURL[0] & 0xFF, 0xC3);
  EXPECT_EQ(file.fileURL[1] & 0xFF, 0xA9);
}

TEST(DownloadFileFromJson, ReadsEverything) {
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
}

TEST(DownloadFileFromJson, TakesNumbersThatAreNoneAsZero) {
  CDownloadManager::FileDownloadDetails file;
  EXPECT_TRUE(fromJson(json(R"({"id":"f","size":"abc","modified":-1})"), file));
  EXPECT_EQ(file.size, 0U);
  EXPECT_EQ(file.modified, 0U);
}

TEST(DownloadFileFromJson, LogsDetailsThatCannotBeReadAndKeepsTheFile) {
  const test::LogCapture log;
  CDownloadManager::FileDownloadDetails file;
  EXPECT_TRUE(fromJson(json(R"({"id":"f","downloadDetails":"soon"})"), file));
  ASSERT_EQ(log.lines().size(), 1U);
  EXPECT_EQ(
      log.lines()[0].find("error Exception caught when trying to obtain download url from json: "),
      0U);
}

TEST(FileListFromJson, LeavesOutElementsThatFailAndKeepsTheOrder) {
  std::vector<CUploadManager::FileDesc> files;
  EXPECT_TRUE(filesFromJson(json(R"([{"id":"a"},5,{"id":{}},{"id":"b"}])"), files));
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0].fileId, "a");
  EXPECT_EQ(files[1].fileId, "b");
}

TEST(FileListFromJson, RejectsWhatIsNoArrayOrEmpty) {
  std::vector<CUploadManager::FileDesc> files;
  for (const char* text : {"null", "[]", "{}", R"("x")", "{\"0\":{}}"}) {
    EXPECT_FALSE(filesFromJson(json(text), files)) << text;
  }
}

TEST(GroupIdFromJson, ReadsTheNumberAtTheBeginning) {
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
