#include "files/file_item_json.h"

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/writer.h>

#include <chrono>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

using test::TemporaryFolder;

Json::Value recordOf(const std::string& path, const std::string& root = "",
                     const std::string& url = "") {
  Json::Value record;
  EXPECT_TRUE(fillFileItemJson(record, path, url, root)) << path;
  return record;
}

Json::Value writtenAndReadAgain(const Json::Value& value) {
  Json::Value read;
  EXPECT_TRUE(Json::Reader().parse(Json::FastWriter().write(value), read));
  return read;
}

class FileItemJson : public testing::Test {
 protected:
  const TemporaryFolder folder;
};

TEST_F(FileItemJson, DescribesAFileWithTheUrlOfTheCallerIfThereIsOne) {
  const std::string path = folder.makeFile("sub/report 1.pdf", "12345");
  const Json::Value record = recordOf(path);
  EXPECT_EQ(record["fileURL"], "file://" + folder.path() + "/sub/report%201.pdf");
  EXPECT_EQ(record["name"], "report 1.pdf");
  EXPECT_TRUE(record["path"].isNull());
  EXPECT_EQ(record["size"], Json::Value(Json::UInt64(5)));
  EXPECT_EQ(record.getMemberNames(),
            (std::vector<std::string>{"created", "fileURL", "modified", "name", "path", "size"}));
  EXPECT_EQ(recordOf(path, "", "zt://a%20b")["fileURL"], "zt://a%20b");
  EXPECT_EQ(recordOf(folder.makeFile("empty"))["size"], Json::Value(Json::UInt64(0)));
}

TEST_F(FileItemJson, LeavesTheRecordUntouchedForAMissingItem) {
  Json::Value record = "before";
  EXPECT_FALSE(fillFileItemJson(record, folder.path() + "/gone", "", ""));
  EXPECT_FALSE(fillFileItemJson(record, "", "", ""));
  EXPECT_FALSE(fillFileItemJson(record, folder.makeLink("dangling", "nothing"), "", ""));
  EXPECT_EQ(record, "before");
}

TEST_F(FileItemJson, CutsTimesTowardZero) {
  const std::string path = folder.makeFile("file");
  test::setModified(path, 1'999'999'999);
  EXPECT_EQ(recordOf(path)["modified"].asInt64(), 1999);
  test::setModified(path, -1'500'999'000);
  EXPECT_EQ(recordOf(path)["modified"].asInt64(), -1500);
  test::setModified(path, -900'000);
  EXPECT_EQ(recordOf(path)["modified"].asInt64(), 0);
}

TEST_F(FileItemJson, TakesTheCreationFromTheFileAndNotFromItsModification) {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  const auto now = [] {
    return duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
  };
  constexpr std::int64_t kClockOfFileSystem = 1000;  // it may lag behind
  const std::int64_t before = now() - kClockOfFileSystem;
  const std::string path = folder.makeFile("file");
  test::setModified(path, 1);
  const std::int64_t created = recordOf(path)["created"].asInt64();
  EXPECT_GE(created, before);
  EXPECT_LE(created, now());
}

TEST_F(FileItemJson, MakesThePathRelativeToTheRootWhichIsComparedAsText) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"/r/a/b/x.txt", "/r", "a/b"},
      {"/r/a/b/x.txt", "/r/", "a/b"},
      {"/r/x.txt", "/r", ""},
      {"/r/x.txt", "/r/", ""},
      {"/x.txt", "/", ""},
      {"/a/x.txt", "/", "a"},
      {"/r/x.txt", "", ""},
      {"/other/a/x.txt", "/r", ""},
      {"/a/bc/x.txt", "/a/b", ""},
      {"/a/bc/de/x.txt", "/a/b", "/de"},
      {"/a/b\\c/x.txt", "/a/b\\", "c"},
  };
  for (const auto& [path, root, expected] : cases) {
    EXPECT_EQ(relativeFolder(path, root), expected) << path << " in " << root;
  }
}

TEST_F(FileItemJson, ShowsEveryNameAndLosesNoneInTheUrl) {
  const std::string longName(250, 'n');
  for (const auto& [name, encoded, shown] :
       {std::tuple<std::string, std::string, std::string>{"100% done", "100%25%20done",
                                                          "100% done"},
        {"\u65E5\u672C", "%E6%97%A5%E6%9C%AC", "\u65E5\u672C"},
        {"line\nbreak \"q\"", "line%0Abreak%20%22q%22", "line\nbreak \"q\""},
        {"caf\xE9\xFF", "caf%E9%FF", "caf\uFFFD\uFFFD"},
        {longName, longName, longName}}) {
    const Json::Value record = writtenAndReadAgain(recordOf(folder.makeFile(name)));
    EXPECT_EQ(record["fileURL"], "file://" + folder.path() + "/" + encoded);
    EXPECT_EQ(record["name"], shown);
  }
}

}  // namespace
}  // namespace zantrio
