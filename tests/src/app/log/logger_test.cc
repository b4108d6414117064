#include "app/log/logger.h"

#include <Poco/File.h>
#include <Poco/Path.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "src/fakes/test_bundle.h"

namespace zantrio {
namespace {

class ApplicationLog : public testing::Test {
 protected:
  ApplicationLog() { CLogHolder::get()->setLogPath(path()); }

  std::string path() const { return folder_.folder() + "/zt_app.log"; }
  std::vector<std::string> lines() const {
    std::ifstream file(path());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    return lines;
  }

 private:
  test::TestBundle folder_;
};

// month-day-year hour:minute:second:millisecond, thread, priority
const std::string kHead = "\\[[0-9]+-[ 0-9]+-[0-9][0-9] [0-9:]+\\] \\[[0-9]+ .*\\] ";

TEST_F(ApplicationLog, BeginsLinesWithTimeThreadAndPriority) {
  CLogHolder::get()->setLogPath("");  // changes nothing
  writeLog(Poco::Message::PRIO_DEBUG, "detail");
  logInformation("one ", 1, " ", std::string("two"));
  logWarning("careful");
  logError("broken");
  const auto all = lines();
  ASSERT_EQ(all.size(), 3U);
  EXPECT_THAT(all[0], testing::MatchesRegex(kHead + "\\[Information\\] one 1 two"));
  EXPECT_THAT(all[1], testing::MatchesRegex(kHead + "\\[Warning\\] careful"));
  EXPECT_THAT(all[2], testing::MatchesRegex(kHead + "\\[Error\\] broken"));
}

TEST_F(ApplicationLog, WritesAgainAfterAFileThatCouldNotBeOpened) {
  CLogHolder::get()->setLogPath(path() + "/no/such/folder");
  EXPECT_NO_THROW(logInformation("lost"));
  CLogHolder::get()->setLogPath(path());
  logInformation("kept");
  ASSERT_EQ(lines().size(), 1U);
  EXPECT_NE(lines()[0].find("kept"), std::string::npos);
}

TEST_F(ApplicationLog, WritesOneLineWhateverBytesItHolds) {
  logError("query: x\n[11-22-26 21:24:05:123] [1 ] [Error] Closing!\r\x1B[31m", '\0', "\xFF end");
  logInformation("next");
  const auto all = lines();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_NE(all[0].find("[Error] query: x\\n[11-22-26 21:24:05:123] [1 ] [Error] Closing!\\r"
                        "\\x1B[31m\\x00\\xFF end"),
            std::string::npos);
  EXPECT_THAT(all[1], testing::MatchesRegex(kHead + "\\[Information\\] next"));
}

TEST_F(ApplicationLog, KeepsLinesOfManyThreadsWhole) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 8; ++number) {
    threads.emplace_back([number] {
      for (int i = 0; i < 200; ++i) {
        logInformation("thread ", number, ", line ", i, ", end");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const auto all = lines();
  EXPECT_EQ(all.size(), 1600U);
  for (const std::string& line : all) {
    EXPECT_THAT(line,
                testing::MatchesRegex(kHead + "\\[Information\\] thread [0-9], line [0-9]+, end"));
  }
}

TEST_F(ApplicationLog, RotatesAtTwoMegabytesAndKeepsFiveFiles) {
  const std::string piece(64 * 1024, 'x');
  for (int i = 0; i < 8 * 34; ++i) {
    logInformation(piece);
  }
  EXPECT_LE(Poco::File(path()).getSize(), 2'200'000U);
  std::vector<std::string> names;
  Poco::File(Poco::Path(path()).parent()).list(names);
  EXPECT_EQ(names.size(), 6U);  // the file that is written and the rotated ones
  for (const std::string& name : names) {
    const auto file = std::filesystem::path(path()).replace_filename(name);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600)) << name;
  }
}

}  // namespace
}  // namespace zantrio
