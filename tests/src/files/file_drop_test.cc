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

TEST_F(FileDrop, DescribesFilesFoldersAndWhatTheyHaveInCommon) {
  for (const char* file : {"d/x.txt", "d/.secret", "dd/y.txt", "p/A/direct.txt", "p/A/sub/deep.txt",
                           "p/B/b.txt", "p/q/1.txt", "p/q/2.txt", "r/q/3.txt", ".h/x.txt"}) {
    folder_.makeFile(file);
  }
  using Texts = std::vector<std::string>;
  const struct {
    Texts items;
    Texts places;
    const char* commonFolder;  // null: none
  } kCases[] = {
      // One item names itself, also when it is written with a slash.
      {{"p/A"}, {"null/direct.txt", "sub/deep.txt"}, "A"},
      {{"p/q/1.txt"}, {"null/1.txt"}, "1.txt"},
      // The paths of several folders begin with their names.
      {{"p/A", "p/B"}, {"A/direct.txt", "A/sub/deep.txt", "B/b.txt"}, "p"},
      // The name of an item may begin like that of a folder.
      {{"d", "dd/y.txt"}, {"null/x.txt", "null/y.txt"}, nullptr},
      {{"d", "p/q/1.txt"}, {"null/x.txt", "null/1.txt"}, nullptr},
      // The names of the parent folders are compared.
      {{"p/q/1.txt", "p/q/2.txt"}, {"null/1.txt", "null/2.txt"}, "q"},
      {{"p/q/1.txt", "r/q/3.txt"}, {"null/1.txt", "null/3.txt"}, "q"},
      {{"p/q/1.txt", "p/q/2.txt", "p/B/b.txt"},
       {"null/1.txt", "null/2.txt", "null/b.txt"},
       nullptr},
      // A hidden file is described even inside a dropped folder, a hidden folder only on its own.
      {{"d/.secret"}, {"null/.secret"}, ".secret"},
      {{"d", "d/.secret"}, {"null/x.txt", "null/.secret"}, nullptr},
      {{".h"}, {"null/x.txt"}, ".h"},
      {{".h", "p/B"}, {"B/b.txt"}, nullptr},
  };
  for (const auto& [items, places, commonFolder] : kCases) {
    SCOPED_TRACE(testing::PrintToString(items));
    Texts paths;
    for (const std::string& item : items) {
      paths.push_back(folder_.path() + "/" + item);
    }
    const Json::Value response = drop(paths);
    EXPECT_THAT(placesOf(response["files"]), testing::UnorderedElementsAreArray(places));
    if (commonFolder != nullptr) {
      expectCommonFolder(response, commonFolder);
    } else {
      expectNoCommonFolder(response);
    }
  }
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(FileDrop, ReportsUnusableItemsAndTakesTheRest) {
  const std::string gone = folder_.path() + "/gone";
  const std::string pipe = folder_.path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::string missing =
      "error FileHandleChooser: handleDrop is not able to locate file " + gone;
  const Json::Value answer = drop({gone, pipe, folder_.makeFile("there.txt")});
  EXPECT_THAT(placesOf(answer["files"]), ElementsAre("null/there.txt"));
  EXPECT_THAT(log_.lines(),
              testing::UnorderedElementsAre(
                  missing, missing,
                  "error handleDrop: file " + pipe + " is nor a regular file or a directory"));
  expectCommonFolder(drop({gone}), "gone");
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
