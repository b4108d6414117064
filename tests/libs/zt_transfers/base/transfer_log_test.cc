#include "base/transfer_log.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <thread>
#include <vector>

#include "sandbox.h"

namespace zt_transfers::test {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;

class TransferLog : public ::testing::Test {
 protected:
  std::string path() const { return (sandbox.folder() / "zt_transfers.log").string(); }

  CSandbox sandbox;
};

TEST_F(TransferLog, WritesOneLineAMessageWithTimeThreadAndPriority) {
  CTransferLog log(path());
  log.error("first\nwith a break, \x1B[31mred, https://h/?X-Amz-Signature=5ecret&a=b");
  log.information("second");
  const std::string content = contentOf(path());
  EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 2);
  EXPECT_THAT(content, ContainsRegex(
                           "^\\[[0-9]{2}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}\\] "
                           "\\[[0-9]+ [^]]*\\] \\[Error\\] first\\\\nwith a break, \\\\x1B.31mred, "
                           "https://h/.X-Amz-Signature=\\*{6}&a=b\n"));
  EXPECT_THAT(content, HasSubstr("[Information] second\n"));
}

TEST_F(TransferLog, IsItsOwnersAloneWhoeverMadeIt) {
  sandbox.file("zt_transfers.log", "");
  std::filesystem::permissions(path(), std::filesystem::perms::all);
  const CTransferLog log(path());
  EXPECT_EQ(std::filesystem::status(path()).permissions(), std::filesystem::perms(0600));
}

TEST_F(TransferLog, AppendsToWhatIsThereAndRotatesAtItsLimit) {
  sandbox.file("zt_transfers.log", "from an earlier run\n");
  CTransferLog log(path(), 1000);
  log.information("joins it");
  EXPECT_THAT(contentOf(path()), HasSubstr("from an earlier run\n["));
  for (int count = 0; count < 60; ++count) {
    log.information("message number " + std::to_string(count));
  }
  EXPECT_LE(std::filesystem::file_size(path()), 1000U);
  EXPECT_LE(std::filesystem::file_size(path() + ".0"), 1000U);
  EXPECT_THAT(contentOf(path()), HasSubstr("message number 59"));
  EXPECT_FALSE(std::filesystem::exists(path() + ".1"));
}

TEST_F(TransferLog, KeepsLinesOfManyThreadsWhole) {
  CTransferLog log(path());
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([&log, number] {
      for (int count = 0; count < 200; ++count) {
        log.information("begin " + std::to_string(number) + " end");
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::istringstream lines(contentOf(path()));
  std::string line;
  int count = 0;
  while (std::getline(lines, line)) {
    EXPECT_THAT(line, ContainsRegex("^\\[.*\\] begin [0-3] end$"));
    ++count;
  }
  EXPECT_EQ(count, 800);
}

TEST_F(TransferLog, TellsOnceThatItCannotBeWritten) {
  ::testing::internal::CaptureStderr();
  CTransferLog log((sandbox.folder() / "missing" / "zt_transfers.log").string());
  log.error("lost");
  log.error("lost");
  const std::string told = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1);
  EXPECT_THAT(told, HasSubstr("cannot write the log"));
}

TEST_F(TransferLog, IsOneForAFolder) {
  const auto one = CTransferLog::inFolder(sandbox.folder());
  EXPECT_EQ(one, CTransferLog::inFolder(sandbox.folder()));
  const CSandbox other;
  EXPECT_NE(one, CTransferLog::inFolder(other.folder()));
}

}  // namespace
}  // namespace zt_transfers::test
