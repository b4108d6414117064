#include "files/file_url.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

std::string toUrl(const std::string& path) {
  std::string url;
  filePathToUrl(path, url);
  return url;
}

std::string toPath(const std::string& url) {
  std::string path;
  fileUrlToPath(url, path);
  return path;
}

TEST(FileUrl, EncodesWhatMayNotStandInAUrl) {
  EXPECT_EQ(toUrl("/nowhere/My File.txt"), "file:///nowhere/My%20File.txt");
  EXPECT_EQ(toUrl("/nowhere/100%?#;[a]\"<>\\^`{|}"),
            "file:///nowhere/100%25%3F%23%3B%5Ba%5D%22%3C%3E%5C%5E%60%7B%7C%7D");
  EXPECT_EQ(toUrl("/nowhere/\u00E4\u20AC\n"), "file:///nowhere/%C3%A4%E2%82%AC%0A");
  EXPECT_EQ(toUrl("/nowhere/a-b_c.d~e!$&'()*+,=:@"), "file:///nowhere/a-b_c.d~e!$&'()*+,=:@");
}

TEST(FileUrl, EndsInASlashForADirectoryOnly) {
  const test::TemporaryFolder folder;
  const std::string file = folder.makeFile("file");
  EXPECT_EQ(toUrl(folder.path()), "file://" + folder.path() + "/");
  EXPECT_EQ(toUrl(folder.path() + "/"), "file://" + folder.path() + "/");
  EXPECT_EQ(toUrl(file), "file://" + file);
  EXPECT_EQ(toUrl("/"), "file:///");
}

TEST(FileUrl, LeadsBackToEveryPath) {
  for (const std::string& path :
       {std::string("/a b/100% #1?.txt"), std::string("/\u00E4/\u65E5\u672C+;=&"),
        std::string("/no utf-8 \xFF\xE9\x80"), "/" + std::string(250, 'n'),
        std::string("/dir:/colon"), std::string("/%41%/x")}) {
    EXPECT_EQ(toPath(toUrl(path)), path);
  }
  EXPECT_EQ(toPath("file:///a/b?c=d#e"), "/a/b?c=d#e");
  std::string path = "untouched";
  EXPECT_THROW(fileUrlToPath("file:///a%zz", path), Poco::SyntaxException);
  EXPECT_EQ(path, "untouched");
}

}  // namespace
}  // namespace zantrio
