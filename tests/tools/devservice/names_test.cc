#include "devservice/names.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

namespace zantrio::devservice {

TEST(PathProblem, AcceptsLegalNamesHoweverOdd) {
  for (const std::string& path : {"a"s, "a/b/c.txt"s, "日本.jpg"s, "...hidden"s, "a\\b"s,
                                  "100%?#.txt"s, " "s, "line\nbreak"s, std::string(255, 'x')}) {
    EXPECT_EQ(pathProblem(path), "") << path;
  }
}

TEST(PathProblem, RefusesPathsThatLeaveTheFolderAndInvalidNames) {
  for (const std::string& path :
       {""s, "/etc/passwd"s, ".."s, "../x"s, "a/../../x"s, "a/."s, "a//b"s, "a/"s, "a\0b"s,
        std::string(256, 'x'), "\xff"s, "\xc3"s, "\xed\xa0\x80"s}) {
    EXPECT_NE(pathProblem(path), "") << testing::PrintToString(path);
  }
}

TEST(Printable, HidesControlCharactersAndShortensWithoutBreakingUtf8) {
  EXPECT_EQ(printable("a\nb\x1b[31m"), "a?b?[31m");
  const std::string longName = "x" + std::string(119, 'y') + "ü";
  EXPECT_EQ(printable(longName).rfind("xyyy", 0), 0U);
  EXPECT_EQ(pathProblem(printable("x" + std::string(118, 'y') + "üü")), "");
}

TEST(EncodePath, KeepsSlashesAndEncodesReservedCharacters) {
  EXPECT_EQ(encodePath("a b/ü#?%.txt"), "a%20b/%C3%BC%23%3F%25.txt");
}

TEST(PathAllocator, NumbersFilesWhoseNameAFileOrFolderHas) {
  CPathAllocator paths;
  EXPECT_EQ(paths.allocate("d/a.tar.gz"), "d/a.tar.gz");
  EXPECT_EQ(paths.allocate("d/a.tar.gz"), "d/a.tar (2).gz");
  EXPECT_EQ(paths.allocate("d/a.tar.gz"), "d/a.tar (3).gz");
  EXPECT_EQ(paths.allocate("d/a.tar (2).gz"), "d/a.tar (2) (2).gz");
  EXPECT_EQ(paths.allocate("d/.profile"), "d/.profile");
  EXPECT_EQ(paths.allocate("d/.profile"), "d/.profile (2)");
  EXPECT_EQ(paths.allocate("a"), "a");
  EXPECT_EQ(paths.allocate("a/b"), "a (2)/b");
  EXPECT_EQ(paths.allocate("a/c"), "a (2)/c");
  EXPECT_EQ(paths.allocate("a (2)"), "a (2) (2)");
}

TEST(PathAllocator, KeepsNumberedNamesWithinTheLimitAndValid) {
  CPathAllocator paths;
  const std::string name = "ü" + std::string(250, 'x') + "ü";  // 254 bytes
  paths.allocate(name);
  const std::string second = paths.allocate(name);
  EXPECT_LE(second.size(), 255U);
  EXPECT_EQ(pathProblem(second), "");
  EXPECT_NE(second, name);
}

}  // namespace zantrio::devservice
