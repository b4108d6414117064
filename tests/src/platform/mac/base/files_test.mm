#include <sys/stat.h>
#include <unistd.h>

#include "files/file_status.h"
#include "files/file_url.h"
#include "services/file_permissions_retriever.h"
#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/temporary_folder.h"

namespace zantrio::mac_test {
namespace {

class FilesMac : public MacTest {
 protected:
  static std::string urlOf(const std::string& path) {
    std::string url = "untouched";
    filePathToUrl(path, url);
    return url;
  }

  static std::string urlOf(const std::string& path, bool isDirectory) {
    std::string url = "untouched";
    filePathToUrl(path, isDirectory, url);
    return url;
  }

  const test::TemporaryFolder folder_;
};

TEST_F(FilesMac, PathsBecomePercentEncodedUtf8Urls) {
  EXPECT_EQ(urlOf("/nowhere/My File.txt"), "file:///nowhere/My%20File.txt");
  EXPECT_EQ(urlOf("/nowhere/Zo\xC3\xAB"), "file:///nowhere/Zo%C3%AB");
}

TEST_F(FilesMac, AnExistingFoldersUrlEndsWithASlash) {
  EXPECT_EQ(urlOf(folder_.makeFolder("sub folder")), "file://" + folder_.path() + "/sub%20folder/");
  EXPECT_EQ(urlOf(folder_.makeFile("file")), "file://" + folder_.path() + "/file");
}

TEST_F(FilesMac, WhoKnowsTheKindOfAnItemSpareTheQuestion) {
  EXPECT_EQ(urlOf("/nowhere/a b", true), "file:///nowhere/a%20b/");
  EXPECT_EQ(urlOf("/nowhere/a b", false), "file:///nowhere/a%20b");
}

TEST_F(FilesMac, APathThatCannotBeConvertedLeavesTheUrlAndIsLogged) {
  EXPECT_EQ(urlOf("/nowhere/\xFF"), "untouched");
  ASSERT_EQ(calls().size(), 1U);
  EXPECT_EQ(calls()[0].find("log: Exception occurred while trying to convert file path to url: "),
            0U)
      << calls()[0];
  EXPECT_EQ(urlOf("/nowhere/\xFF", true), "untouched");
}

TEST_F(FilesMac, TheStatusIsThatOfTheFileSystem) {
  const std::string path = folder_.makeFile("file", "12345");
  test::setModified(path, 1'500'000'000'123'456'789);
  FileStatus status;
  ASSERT_EQ(readFileStatus(folder_.makeLink("link", path), status), 0);
  EXPECT_TRUE(status.isRegularFile());
  EXPECT_EQ(status.size, 5U);
  EXPECT_EQ(status.modifiedMicros, 1'500'000'000'123'456);
  EXPECT_GT(status.createdMicros, status.modifiedMicros);

  struct stat data {};
  ASSERT_EQ(stat(path.c_str(), &data), 0);
  EXPECT_EQ(status.identity.inode, data.st_ino);
  EXPECT_EQ(status.identity.device, data.st_dev);

  ASSERT_EQ(readFileStatus(folder_.path(), status), 0);
  EXPECT_TRUE(status.isDirectory());
}

TEST_F(FilesMac, TheStatusOfWhatIsNotThereIsAnErrorAndChangesNothing) {
  FileStatus status;
  status.size = 77;
  EXPECT_EQ(readFileStatus(folder_.path() + "/none", status), ENOENT);
  EXPECT_EQ(status.size, 77U);
}

TEST_F(FilesMac, PermissionsAreTheSumOfReadAndWrite) {
  const std::string path = folder_.makeFile("file");
  EXPECT_EQ(createFilePermissionsRetriever()->getPermissions(path), 3);
  EXPECT_EQ(createFilePermissionsRetriever()->getPermissions(path + "none"), 0);
}

}  // namespace
}  // namespace zantrio::mac_test
