#include "transfers/download_path.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "bridge/json_text.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/test_bundle.h"
#include "support/log_capture.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;
using test::FakeServices;
using test::ScopedHome;
using test::TemporaryFolder;

constexpr const char* kPrefix = "error QueryHandlerDownloadManager: ";

class DownloadPath : public testing::Test {
 protected:
  DownloadPath() { services.reset(); }

  // The path for these parameters; "none" when there is none.
  std::string resolve(const std::string& parameters) {
    Json::Value json;
    EXPECT_TRUE(parseJson(parameters, json)) << parameters;
    std::string path;
    if (!resolveDownloadPath(json, path)) {
      return "none";
    }
    EXPECT_TRUE(fs::is_directory(path)) << path;
    return path;
  }

  bool toldOfAutoDownload() const {
    return log.contains(std::string(kPrefix) +
                        "auto download flag is set, but failed to generate auto download dir!");
  }

  // A folder whose name a URL has to encode.
  std::string makeChoice() {
    const std::string path = folder.makeFolder("my ünit 100%");
    services.choices.push_back({"file://" + folder.path() + "/my%20%C3%BCnit%20100%25/"});
    return path + "/";
  }

  const TemporaryFolder folder;
  const ScopedHome home{folder.path().c_str()};
  FakeServices& services = FakeServices::instance();
  test::LogCapture log;
};

TEST_F(DownloadPath, IsBelowTheDownloadsWhenThePageWantsNoQuestion) {
  folder.makeFolder("Downloads");
  EXPECT_EQ(resolve(R"({"autoDownload":true,"summary":"Holiday 100%/Tag 1"})"),
            folder.path() + "/Downloads/Zantrio/Holiday 100%/Tag 1");
  EXPECT_EQ(resolve(R"({"autoDownload":true})"), folder.path() + "/Downloads/Zantrio");
  EXPECT_TRUE(services.calls.empty());
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(DownloadPath, IsAskedForWhenThePageWantsTheQuestion) {
  folder.makeFolder("Downloads");
  for (const char* parameters : {R"({"summary":"s"})", R"({"summary":"s","autoDownload":"true"})",
                                 R"({"summary":"s","autoDownload":false})"}) {
    const std::string choice = makeChoice();
    EXPECT_EQ(resolve(parameters), choice + "s");
  }
  const std::string choice = makeChoice();
  EXPECT_EQ(resolve(R"({"summary":""})"), choice);
  EXPECT_EQ(services.calls, std::vector<std::string>(4, "folder: Choose a folder"));
  EXPECT_FALSE(fs::exists(folder.path() + "/Downloads/Zantrio"));
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(DownloadPath, IsAskedForWithoutADownloadsFolderWhichIsNotMadeOrWithoutAHomeFolder) {
  const std::string parameters = R"({"autoDownload":true,"summary":"s"})";
  std::string choice = makeChoice();
  EXPECT_EQ(resolve(parameters), choice + "s");
  EXPECT_FALSE(fs::exists(folder.path() + "/Downloads"));
  EXPECT_TRUE(toldOfAutoDownload());
  folder.makeFolder("Downloads");
  const ScopedHome none("");
  choice = makeChoice();
  EXPECT_EQ(resolve(parameters), choice + "s");
  EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(DownloadPath, IsAskedForWhenTheAutomaticFolderCannotBeMade) {
  folder.makeFile("Downloads/Zantrio", "a file");
  EXPECT_EQ(resolve(R"({"autoDownload":true,"summary":"s"})"), "none");
  ASSERT_EQ(log.lines().size(), 3U);
  EXPECT_EQ(log.lines()[0].find("error getAutoDownloadDirectory: Exception: "), 0U);
  EXPECT_TRUE(toldOfAutoDownload());
  EXPECT_EQ(log.lines()[2],
            std::string(kPrefix) + "user has not selected a directory for download!");
}

TEST_F(DownloadPath, IsAskedForAgainAsLongAsTheFolderCannotBeWritten) {
  services.permissionsOf = {{"/a b", IFilePermissionsRetriever::kRead},
                            {"/c", IFilePermissionsRetriever::kRead}};
  services.choices = {{"file:///a%20b"}, {"file:///c"}};
  EXPECT_EQ(resolve(R"({"summary":"s"})"), "none");
  const std::string ask = "folder: Choose a folder";
  EXPECT_EQ(services.calls,
            (std::vector<std::string>{ask,
                                      "alert Zantrio does not have permissions to write to folder "
                                      "/a b. Please select another folder.",
                                      ask,
                                      "alert Zantrio does not have permissions to write to folder "
                                      "/c. Please select another folder.",
                                      ask}));
  services.choices = {{"file:///c"}};
  const std::string choice = makeChoice();
  EXPECT_EQ(resolve(R"({"summary":"s"})"), choice + "s");
}

TEST_F(DownloadPath, StaysInTheFolderWhateverTheSummary) {
  const std::string choice = makeChoice();
  EXPECT_EQ(resolve(R"({"summary":"../../a/..\u0000/.b"})"), choice + "a/_._/_b");
  EXPECT_TRUE(
      log.contains("warning QueryHandlerDownloadManager: the summary is no safe name for a folder, "
                   "using this one: \"a/_._/_b\""));
  for (const char* odd : {"..", "/", ".", " "}) {
    const std::string again = makeChoice();
    EXPECT_EQ(resolve(std::string(R"({"summary":")") + odd + "\"}"), again + "Message");
  }
  EXPECT_EQ(resolve(R"({"summary":".."})"), "none");  // cancelled, not refused
}

TEST_F(DownloadPath, IsNoneWhenTheSummaryIsNoText) {
  EXPECT_EQ(resolve(R"({"autoDownload":true,"summary":{}})"), "none");
  EXPECT_EQ(log.lines(),
            std::vector<std::string>{std::string(kPrefix) + "the summary is no text!"});
}

TEST_F(DownloadPath, IsNoneWhenTheFolderCannotBeMade) {
  makeChoice();
  folder.makeFile("my ünit 100%/s", "a file");
  EXPECT_EQ(resolve(R"({"summary":"s/t"})"), "none");
  ASSERT_EQ(log.lines().size(), 1U);
  EXPECT_EQ(
      log.lines()[0].find(std::string(kPrefix) + "the folder for the download cannot be made: "),
      0U);
}

}  // namespace
}  // namespace zantrio
