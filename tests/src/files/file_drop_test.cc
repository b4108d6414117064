#include "files/file_drop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>

#include "src/files/places.h"
#include "support/log_capture.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

using test::LogCapture;
using test::placesOf;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// The answer for these dropped items.
Json::Value drop(const std::vector<std::string>& paths) {
  return CFileDrop(std::vector<Poco::Path>(paths.begin(), paths.end())).describe();
}

void expectCommonFolder(const Json::Value& answer, const std::string& name) {
  EXPECT_EQ(answer["directoryName"], name);
  EXPECT_EQ(answer["summary"], name);
}

void expectNoCommonFolder(const Json::Value& answer) {
  EXPECT_FALSE(answer.isMember("directoryName"));
  EXPECT_FALSE(answer.isMember("summary"));
}

class FileDrop : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const LogCapture log_;
};

TEST_F(FileDrop, TakesAFolderOnceWithWhatLiesInside) {
  const std::string inside = folder_.makeFile("d/x.txt");
  const std::string outer = folder_.path() + "/d";
  for (const auto& paths : {std::vector{outer, inside}, std::vector{inside, outer}}) {
    const LogCapture log;
    EXPECT_THAT(placesOf(drop(paths)["files"]), ElementsAre("null/x.txt"));
    EXPECT_THAT(log.lines(), ElementsAre("warning Handling files drop: Item " + inside +
                                         " is a child of another item."));
  }
}

TEST_F(FileDrop, TakesAnItemWhoseNameOnlyBeginsLikeATakenFolder) {
  folder_.makeFile("d/x.txt");
  const std::string file = folder_.makeFile("dd/y.txt");
  EXPECT_THAT(placesOf(drop({folder_.path() + "/d", file})["files"]),
              ElementsAre("null/x.txt", "null/y.txt"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(FileDrop, BeginsThePathsOfSeveralFoldersWithTheirNames) {
  folder_.makeFile("p/A/direct.txt");
  folder_.makeFile("p/A/sub/deep.txt");
  folder_.makeFile("p/B/b.txt");
  const Json::Value answer = drop({folder_.path() + "/p/A", folder_.path() + "/p/B"});
  EXPECT_THAT(placesOf(answer["files"]),
              UnorderedElementsAre("A/direct.txt", "A/sub/deep.txt", "B/b.txt"));
  expectCommonFolder(answer, "p");
}

TEST_F(FileDrop, MakesThePathsOfOneFolderRelativeToIt) {
  folder_.makeFile("p/A/direct.txt");
  folder_.makeFile("p/A/sub/deep.txt");
  const Json::Value answer = drop({folder_.path() + "/p/A"});
  EXPECT_THAT(placesOf(answer["files"]), UnorderedElementsAre("null/direct.txt", "sub/deep.txt"));
  expectCommonFolder(answer, "A");
}

TEST_F(FileDrop, NamesASingleItemAlsoWhenItIsWrittenWithASlash) {
  folder_.makeFile("A/x.txt");
  expectCommonFolder(drop({folder_.path() + "/A/"}), "A");
  expectCommonFolder(drop({folder_.path() + "/A/x.txt"}), "x.txt");
}

TEST_F(FileDrop, HasNoCommonFolderForAFolderAndAFileBelow) {
  folder_.makeFile("A/x.txt");
  const Json::Value answer = drop({folder_.path() + "/A", folder_.makeFile("q/r/y.txt")});
  EXPECT_EQ(answer["files"].size(), 2U);
  expectNoCommonFolder(answer);
}

TEST_F(FileDrop, ComparesTheNamesOfTheFoldersOfSeveralFiles) {
  const std::string one = folder_.makeFile("p/q/1.txt");
  const std::string two = folder_.makeFile("p/q/2.txt");
  const std::string sameName = folder_.makeFile("r/q/3.txt");
  const std::string otherName = folder_.makeFile("p/s/4.txt");
  expectCommonFolder(drop({one, two}), "q");
  expectCommonFolder(drop({one, sameName}), "q");
  expectNoCommonFolder(drop({one, two, otherName}));
}

TEST_F(FileDrop, ReportsMissingItemsInBothPassesAndTakesTheRest) {
  const std::string gone = folder_.path() + "/gone";
  const std::string line = "error FileHandleChooser: handleDrop is not able to locate file " + gone;
  const Json::Value answer = drop({gone, folder_.makeFile("there.txt")});
  EXPECT_THAT(placesOf(answer["files"]), ElementsAre("null/there.txt"));
  EXPECT_THAT(log_.lines(), ElementsAre(line, line));
}

TEST_F(FileDrop, KeepsTheNameOfASingleItemThatIsGone) {
  const Json::Value answer = drop({folder_.path() + "/gone"});
  EXPECT_EQ(answer["files"], Json::Value(Json::arrayValue));
  expectCommonFolder(answer, "gone");
}

TEST_F(FileDrop, DescribesADroppedHiddenFileEvenInsideATakenFolder) {
  folder_.makeFile("d/x.txt");
  const std::string hidden = folder_.makeFile("d/.secret");
  EXPECT_THAT(placesOf(drop({hidden})["files"]), ElementsAre("null/.secret"));
  EXPECT_THAT(placesOf(drop({folder_.path() + "/d", hidden})["files"]),
              ElementsAre("null/x.txt", "null/.secret"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(FileDrop, WalksADroppedHiddenFolderOnlyWhenItIsAlone) {
  folder_.makeFile(".h/x.txt");
  folder_.makeFile("v/y.txt");
  EXPECT_THAT(placesOf(drop({folder_.path() + "/.h"})["files"]), ElementsAre("null/x.txt"));
  EXPECT_THAT(placesOf(drop({folder_.path() + "/.h", folder_.path() + "/v"})["files"]),
              ElementsAre("v/y.txt"));
}

TEST_F(FileDrop, RefusesWhatIsNeitherFileNorFolder) {
  const std::string pipe = folder_.path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const Json::Value answer = drop({pipe});
  EXPECT_EQ(answer["files"], Json::Value(Json::arrayValue));
  EXPECT_THAT(log_.lines(), ElementsAre("error handleDrop: file " + pipe +
                                        " is nor a regular file or a directory"));
}

TEST_F(FileDrop, ShowsANameThatIsNoUtf8AsTheCommonFolder) {
  folder_.makeFile("caf\xE9/x.txt");
  expectCommonFolder(drop({folder_.path() + "/caf\xE9"}), "caf\uFFFD");
}

TEST_F(FileDrop, TakesAHundredThousandItemsWithTheFoldersThatHoldThem) {
  const TemporaryFolder large(TemporaryFolder::Place::kMemory);
  std::vector<std::string> items;
  for (int number = 0; number < 100'000; ++number) {
    if (number % 100 == 0) {
      items.push_back(large.makeFolder("folder" + std::to_string(number)));
    }
    items.push_back(large.path() + "/folder" + std::to_string(number / 100 * 100) + "/file" +
                    std::to_string(number));
    ASSERT_EQ(mknod(items.back().c_str(), S_IFREG | 0600, 0), 0);
  }
  std::reverse(items.begin(), items.end());
  const auto places = placesOf(drop(items)["files"]);
  EXPECT_EQ(places.size(), 100'000U);
  EXPECT_EQ(std::set(places.begin(), places.end()).size(), 100'000U);
}

}  // namespace
}  // namespace zantrio
