#include "files/folder_walk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/writer.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

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

Json::Value walk(const std::string& folder, const std::string& root) {
  Json::Value files(Json::arrayValue);
  CFolderWalk(files, root).walk(folder);
  return files;
}

Json::Value walk(const std::string& folder) {
  return walk(folder, folder);
}

class FolderWalk : public testing::Test {
 protected:
  const TemporaryFolder folder;
};

TEST_F(FolderWalk, LeavesOutHiddenItemsButNotAHiddenRoot) {
  const std::string hidden = folder.makeFolder(".hidden");
  folder.makeFile(".hidden/seen.txt");
  folder.makeFile(".hidden/.file");
  folder.makeFile(".hidden/.folder/file.txt");
  EXPECT_THAT(placesOf(walk(hidden)), ElementsAre("null/seen.txt"));
  EXPECT_THAT(placesOf(walk(folder.path())), IsEmpty());
  EXPECT_THAT(placesOf(walk(hidden, folder.path() + "/")), IsEmpty());
}

TEST_F(FolderWalk, TakesLinksForWhatTheyLeadTo) {
  const TemporaryFolder outside;
  outside.makeFile("there.txt", "1234");
  folder.makeLink("folder", outside.path());
  folder.makeLink("file", outside.path() + "/there.txt");
  folder.makeLink("dangling", "nothing");
  const Json::Value files = walk(folder.path());
  EXPECT_THAT(placesOf(files), UnorderedElementsAre("folder/there.txt", "null/file"));
  for (const Json::Value& file : files) {
    EXPECT_EQ(file["size"].asUInt64(), 4U);
  }
}

TEST_F(FolderWalk, LeavesOutLinksThatLeadBackToTheirFolder) {
  folder.makeFile("one/a.txt");
  folder.makeFile("two/b.txt");
  folder.makeLink("one/up", "..");
  folder.makeLink("one/self", ".");
  folder.makeLink("one/two", "../two");
  folder.makeLink("two/one", "../one");
  folder.makeLink("loop", "loop");
  const LogCapture log;
  EXPECT_THAT(placesOf(walk(folder.path())),
              UnorderedElementsAre("one/a.txt", "one/two/b.txt", "two/b.txt", "two/one/a.txt"));
  EXPECT_THAT(log.lines(),
              testing::Contains("warning FileHandleChooser: left out " + folder.path() +
                                "/one/up: it leads back to a folder that holds it"));
}

TEST_F(FolderWalk, SkipsWhatIsNeitherFileNorFolderAndFoldersThatAreMissing) {
  const std::string file = folder.makeFile("file");
  ASSERT_EQ(mkfifo((folder.path() + "/pipe").c_str(), 0600), 0);
  EXPECT_THAT(placesOf(walk(folder.path())), ElementsAre("null/file"));
  EXPECT_THAT(placesOf(walk(folder.path() + "/gone")), IsEmpty());
  EXPECT_THAT(placesOf(walk(file)), IsEmpty());
}

TEST_F(FolderWalk, GoesOnBehindFoldersThatAreTooDeepForAnyPath) {
  const std::string name(200, 'd');
  folder.makeFile("shallow.txt");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  for (int level = 0; level < 30; ++level) {  // 6,000 bytes; a path may have 4,096
    ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
    ASSERT_EQ(chdir(name.c_str()), 0);
  }
  std::filesystem::current_path(before);
  folder.makeFile(name + "/inside.txt");
  const LogCapture log;
  EXPECT_THAT(placesOf(walk(folder.path())),
              UnorderedElementsAre("null/shallow.txt", name + "/inside.txt"));
  EXPECT_THAT(log.lines(), ElementsAre(testing::EndsWith("File name too long")));
  ASSERT_EQ(std::system(("rm -rf '" + folder.path() + "/" + name + "'").c_str()), 0);
}

TEST_F(FolderWalk, DescribesFilesInFoldersOfAnyDepth) {
  std::string deep = "d";
  for (int level = 1; level < 600; ++level) {
    deep += "/d";
  }
  folder.makeFile(deep + "/bottom.txt");
  folder.makeFile("d/top.txt");
  folder.makeFile("a.txt");
  folder.makeFolder("empty");
  EXPECT_THAT(placesOf(walk(folder.path())),
              UnorderedElementsAre("null/a.txt", deep + "/bottom.txt", "d/top.txt"));
}

TEST_F(FolderWalk, DescribesNamesThatAreNoUtf8InValidJson) {
  folder.makeFile("d\xE9j\xE0/vu\xFF");
  Json::Value read;
  ASSERT_TRUE(Json::Reader().parse(Json::FastWriter().write(walk(folder.path())), read));
  EXPECT_EQ(read[0]["name"], "vu\uFFFD");
  EXPECT_EQ(read[0]["path"], "d\uFFFDj\uFFFD");
  EXPECT_EQ(read[0]["fileURL"], "file://" + folder.path() + "/d%E9j%E0/vu%FF");
}

}  // namespace
}  // namespace zantrio
