#include "services/crash/crash_log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

const std::string kAppHeader = "---------------------- zt_app.log ---------------------------\n\n";
const std::string kTransfersHeader =
    "\n\n---------------------- zt_transfers.log ---------------------------\n\n";
const std::string kSecondaryHeader =
    "\n\n---------------------- zt_transfers.log.0 ---------------------------\n\n";
const std::string kBrowserHeader =
    "\n\n---------------------- cef_browser.log ---------------------------\n\n";

// Bytes that differ from place to place, so that a cut in the wrong place shows.
std::string digits(std::size_t length) {
  std::string text;
  while (text.size() < length) {
    text += std::to_string(text.size()) + " ";
  }
  text.resize(length);
  return text;
}

class CrashLog : public testing::Test {
 protected:
  std::string collect() const { return collectCrashLog(crashLogFilesIn(folder_.path() + "/")); }

  const test::TemporaryFolder folder_;
};

TEST_F(CrashLog, TakesSmallLogsWholeAndTheEndsOfLargeOnes) {
  folder_.makeFile("zt_app.log", digits(100));
  folder_.makeFile("zt_transfers.log", "now\n");
  folder_.makeFile("zt_transfers.log.0", "before\n");
  folder_.makeFile("cef_browser.log", "page\n");
  EXPECT_EQ(collect(), kAppHeader + digits(100) + kTransfersHeader + "now\n" + kSecondaryHeader +
                           "before\n" + kBrowserHeader + "page\n");
  const std::string large = digits(40000);
  for (const char* log : {"zt_app.log", "zt_transfers.log", "cef_browser.log"}) {
    folder_.makeFile(log, large);
  }
  EXPECT_EQ(collect(), kAppHeader + large.substr(40000 - 15360) + kTransfersHeader +
                           large.substr(40000 - 30720) + kBrowserHeader +
                           large.substr(40000 - 15360));
}

TEST_F(CrashLog, HoldsNoSecretAlsoWhereTheCutSplitsOne) {
  const std::string line = "Received query: {\"token\":\"" + std::string(3000, 's') + "\"}\n";
  folder_.makeFile("zt_app.log", line + std::string(15360 - 1000, '.'));
  folder_.makeFile("cef_browser.log", "https://host/f?X-Amz-Signature=ssss&x=y\n");
  const std::string text = collect();
  EXPECT_EQ(text.find("sss"), std::string::npos);
  EXPECT_NE(text.find("\n***"), std::string::npos);
  EXPECT_NE(text.find("https://host/f?X-Amz-Signature=****&x=y\n"), std::string::npos);
}

TEST_F(CrashLog, CountsCharactersToTellWhetherTheTransferLogFilledItsShare) {
  const struct {
    std::string transfers;
    bool hasSecondary;
  } kCases[] = {
      {digits(30719), true},
      {digits(30720), false},
      // As many bytes, but a character fewer.
      {digits(30718) + "\u00E9", true},
      // A split character is dropped, which makes the text shorter than the cap.
      {"\u00E9" + digits(30719), true},
  };
  folder_.makeFile("zt_transfers.log.0", "before");
  for (const auto& [transfers, hasSecondary] : kCases) {
    folder_.makeFile("zt_transfers.log", transfers);
    EXPECT_EQ(collect().find(kSecondaryHeader + "before") != std::string::npos, hasSecondary)
        << transfers.size() << " bytes";
  }
}

TEST_F(CrashLog, ReadsLogsOfGigabytesAtTheirEnd) {
  const std::string path = folder_.makeFile("zt_app.log");
  constexpr off_t kSize = 8LL << 30;  // as a hole, which takes no room
  ASSERT_EQ(truncate(path.c_str(), kSize), 0);
  FILE* const file = std::fopen(path.c_str(), "ab");
  std::fputs("the last line\n", file);
  std::fclose(file);
  EXPECT_EQ(collect().find("the last line\n" + kTransfersHeader), kAppHeader.size() + 15360 - 14);
}

TEST_F(CrashLog, CountsWhatIsMissingOrNoOrdinaryFileAsEmpty) {
  folder_.makeFolder("zt_app.log");
  ASSERT_EQ(mkfifo((folder_.path() + "/zt_transfers.log").c_str(), 0600), 0);
  EXPECT_EQ(collect(), kAppHeader + kTransfersHeader + kSecondaryHeader + kBrowserHeader);
}

TEST(LogDataToText, KeepsTheTailWithoutTheRestOfACutCharacter) {
  const std::string text = "x\U0001F600\u20ACz";
  const std::tuple<std::string, std::size_t, std::string> cases[] = {
      {"", 5, ""},
      {"abc", 0, ""},
      {"abc", 3, "abc"},
      {"abcd", 3, "bcd"},
      {text, 8, text.substr(1)},
      {text, 7, "\u20ACz"},
      {text, 4, "\u20ACz"},
      {text, 3, "z"},
      {text, 1, "z"},
      // Nothing was cut, or more than a character can be: these bytes are in the log itself.
      {"\x82\xACz", 3, "\uFFFD\uFFFDz"},
      {"a\x80\x80\x80\x80z", 5, "\uFFFDz"},
      {"aa\xFFz", 3, "a\uFFFDz"},
  };
  for (const auto& [data, maximum, expected] : cases) {
    EXPECT_EQ(logDataToText(data, maximum), expected) << data << " to " << maximum;
  }
}

}  // namespace
}  // namespace zantrio
