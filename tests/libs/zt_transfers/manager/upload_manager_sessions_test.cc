#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "parts_fixture.h"

namespace zt_transfers::test {
namespace {

using ::testing::SizeIs;

namespace fs = std::filesystem;

constexpr const char* kAnyPart = "*partNumber=*";

// One file of eight parts, sent one part after the other and held up in the fifth.
class UploadSession : public CPartsTest {
 protected:
  void SetUp() override {
    CPartsTest::SetUp();
    configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
    stallPart(5);
    parts_ = count("PUT", kAnyPart);
    file_ = describe("file", patternOf(8 * kPart));
    group_ = upload({file_});
    ASSERT_TRUE(waitForMoreThan(group_, 4 * kPart));
    ASSERT_EQ(counted(parts_), 4U);
    ASSERT_THAT(sessions(), SizeIs(1));
    session_ = sessions()[0];
  }
  void pause() {
    manager->pauseGroup(group_);
    ASSERT_TRUE(recorder.waitForGroupState(group_, kGroupPaused));
  }
  void expectCompleted(const std::string& content, std::uint64_t partsSent) {
    ASSERT_TRUE(recorder.waitForGroupState(group_, kGroupCompleted));
    EXPECT_TRUE(arrived("file") == content);
    EXPECT_EQ(counted(parts_), partsSent);
    EXPECT_TRUE(waitForNoSession());
  }

  int parts_ = 0;
  CUploadManager::FileDesc file_;
  std::int32_t group_ = 0;
  std::string session_;
};

TEST_F(UploadSession, GoesOnAfterAPauseWithThePartsThatAreMissing) {
  pause();
  EXPECT_EQ(recorder.lastGroup(group_).bytesTransferred, 4 * kPart);
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 8);
}

TEST_F(UploadSession, GoesOnAfterARestartOfTheProgramAndOfTheService) {
  manager->shutdown();
  const auto port = server_->port();
  options_.port = port;
  ServiceTest::restart();
  parts_ = count("PUT", kAnyPart);
  restartManager();
  expectCompleted(patternOf(8 * kPart), 4);
}

TEST_F(UploadSession, GoesOnUnderARenewedUrl) {
  pause();
  file_.url += "?renewed=yes";
  manager->queueFiles(group_, {file_});
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 8);
}

TEST_F(UploadSession, SendsAgainWhatTheServerHasLostOrHasOtherwise) {
  pause();
  for (const auto& entry :
       fs::directory_iterator(fs::path(options_.data) / "multipart" / session_)) {
    if (entry.path().filename().string().rfind("2-", 0) == 0) {
      fs::remove(entry.path());
    }
  }
  options_.port = server_->port();
  ServiceTest::restart();
  parts_ = count("PUT", kAnyPart);
  call("PUT", file_.url.substr(server_->url().size()) + "?partNumber=3&uploadId=" + session_,
       std::string(kPart, 'x'));
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 1 + 6);
}

TEST_F(UploadSession, BeginsAnotherWhenTheServerHasForgottenIt) {
  pause();
  const auto path = file_.url.substr(server_->url().size());
  ASSERT_EQ(call("DELETE", path + "?uploadId=" + session_).status, 204);
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 4 + 8);
}

TEST_F(UploadSession, BeginsAnotherForAnotherVersionOfTheFile) {
  pause();
  sandbox.file("file", patternOf(8 * kPart, 2));
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart, 2), 4 + 8);
}

TEST_F(UploadSession, MixesNothingWhenOtherContentHasTheSameSizeAndTime) {
  pause();
  const auto path = sandbox.folder() / "file";
  const auto time = fs::last_write_time(path);
  {
    std::fstream edited(path, std::ios::in | std::ios::out | std::ios::binary);
    edited.seekp(2 * kPart + 5);
    edited << "edited";
  }
  fs::last_write_time(path, time);
  manager->resumeGroup(group_);
  expectCompleted(contentOf(path), 4 + 5);
}

TEST_F(UploadSession, GoesOnWhenItsDiskAndTheFileHaveOtherNumbers) {
  pause();
  const CSandbox memory("/dev/shm");
  const auto path = sandbox.folder() / "file";
  const auto moved = memory.file("file", contentOf(path));
  fs::last_write_time(moved, fs::last_write_time(path));
  fs::remove(path);
  fs::create_symlink(moved, path);
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 8);
}

TEST_F(UploadSession, SeesThatThePartsWerePutTogetherAlthoughNoAnswerCame) {
  fault("POST", "uploadId=*", R"("type":"delay","milliseconds":500,"count":1)");
  const int completions = 3;  // the rule just made
  pause();
  manager->resumeGroup(group_);
  ASSERT_TRUE(eventually([&] { return counted(completions) == 1; }));
  pause();
  ASSERT_TRUE(eventually([&] { return fs::exists(arrivedFile("file")); }));
  manager->resumeGroup(group_);
  expectCompleted(patternOf(8 * kPart), 8);
}

TEST_F(UploadSession, KeepsWhatItHasWhenItsAuthorityHasExpired) {
  pause();
  fault("GET", "uploadId=*", R"("type":"status","status":403,"count":1)");
  manager->resumeGroup(group_);
  ASSERT_TRUE(recorder.waitForGroupState(group_, kGroupErrored));
  EXPECT_THAT(sessions(), SizeIs(1));
  manager->queueFiles(group_, {file_});
  expectCompleted(patternOf(8 * kPart), 8);
}

TEST_F(CPartsTest, KeepsThePartsWhileTheFolderOfTheSourceIsAway) {
  configure([](auto& configuration) { configuration.maxConcurrentTransfers = 1; });
  stallPart(3);
  const int sent = count("PUT", kAnyPart);
  const auto folder = sandbox.folder() / "folder";
  const auto away = sandbox.folder() / "away";
  fs::create_directory(folder);
  auto file = describe("file", patternOf(4 * kPart));
  fs::rename(sandbox.folder() / "file", folder / "file");
  file.fileURL = fileUrl(folder / "file");
  const auto group = upload({file});
  ASSERT_TRUE(waitForMoreThan(group, 2 * kPart));
  manager->pauseGroup(group);
  fs::rename(folder, away);
  manager->resumeGroup(group);
  ASSERT_TRUE(eventually([&] { return log().find("cannot open the file") != std::string::npos; }));
  EXPECT_THAT(sessions(), SizeIs(1));
  fs::rename(away, folder);
  manager->resumeGroup(group);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(counted(sent), 4U);
}

TEST_F(CPartsTest, ReadsTheListOfPartsPageByPage) {
  constexpr std::size_t kParts = 1030;
  constexpr std::size_t kSmall = 1024;
  configure([](auto& configuration) {
    configuration.partSize = kSmall;
    configuration.maxConcurrentTransfers = 1;
  });
  stallPart(kParts - 3);
  const int sent = count("PUT", kAnyPart);
  const int pages = count("GET", "*uploadId=*");
  const auto group = upload({describe("file", patternOf(kParts * kSmall))});
  ASSERT_TRUE(waitForMoreThan(group, (kParts - 4) * kSmall - 1));
  restartManager();
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_TRUE(arrived("file") == patternOf(kParts * kSmall));
  EXPECT_EQ(counted(sent), kParts);
  EXPECT_EQ(counted(pages), 2U);
}

}  // namespace
}  // namespace zt_transfers::test
