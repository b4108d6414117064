#include "services/crash/crash_report_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <set>
#include <system_error>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t kSecond = 1'000'000'000;

class CrashReportFolderTest : public testing::Test {
 protected:
  // A report of a day in March 2024 that was written `seconds` after 1970.
  std::string makeReport(int day, int seconds) const {
    const std::string path = temporary_.makeFile(
        "Crash Reports/2024-03-" + std::to_string(day) + "T10-00-00.000Z.txt", "crashed");
    test::setModified(path, seconds * kSecond);
    return path;
  }

  const test::TemporaryFolder temporary_;
  const CrashReportFolder folder_{temporary_.path() + "/"};
};

TEST_F(CrashReportFolderTest, FindsReportsThatAreNewerThanTheLog) {
  const std::string log = temporary_.makeFile("zt_app.log", "last line\n");
  test::setModified(log, 1000 * kSecond);
  EXPECT_THAT(folder_.writtenAfter(log), IsEmpty());

  makeReport(11, 900);
  const std::string second = makeReport(13, 1001);
  const std::string first = makeReport(12, 1002);
  temporary_.makeFile("Crash Reports/notes.txt", "written now");
  EXPECT_THAT(folder_.writtenAfter(log), ElementsAre(first, second));
}

TEST_F(CrashReportFolderTest, FindsAllReportsWhereThereIsNoLog) {
  const std::string report = makeReport(11, 900);
  EXPECT_THAT(folder_.writtenAfter(temporary_.path() + "/zt_app.log"), ElementsAre(report));
}

TEST_F(CrashReportFolderTest, GivesEveryReportItsOwnFile) {
  constexpr int kReports = 50;
  for (int i = 0; i < kReports; ++i) {
    close(folder_.createReport());
  }
  const auto all = folder_.writtenAfter("");
  EXPECT_EQ(std::set(all.begin(), all.end()).size(), kReports);
  folder_.keepNewest(3);
  EXPECT_THAT(folder_.writtenAfter(""), ElementsAre(all[47], all[48], all[49]));
}

TEST_F(CrashReportFolderTest, SaysWhereReportsCannotBeWritten) {
  temporary_.makeFile("Crash Reports", "in the way");
  try {
    folder_.createReport();
    FAIL() << "made a report where a file is in the way";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::not_a_directory);
    EXPECT_THAT(error.what(), testing::HasSubstr(temporary_.path() + "/Crash Reports"));
  }
}

}  // namespace
}  // namespace zantrio
