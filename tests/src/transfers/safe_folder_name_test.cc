#include "transfers/safe_folder_name.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(SafeFolderName, KeepsOrdinaryNamesAndNestedOnes) {
  for (const char* name : {"", "Holiday", "100% Grüße: #1?", "a/b c/日本", "~", "v1.2", "a..b"}) {
    EXPECT_EQ(safeFolderName(name), name);
  }
}

TEST(SafeFolderName, NeverLeavesTheFolderItIsPutInto) {
  EXPECT_EQ(safeFolderName("../../etc"), "etc");
  EXPECT_EQ(safeFolderName("a/../../b"), "a/b");
  EXPECT_EQ(safeFolderName("/etc/passwd"), "etc/passwd");
  EXPECT_EQ(safeFolderName("a//./b/"), "a/b");
  EXPECT_EQ(safeFolderName(".."), "");
  EXPECT_EQ(safeFolderName("/"), "");
  EXPECT_EQ(safeFolderName(std::string("..\0/x", 5)), "_._/x");
}

TEST(SafeFolderName, HidesNothing) {
  EXPECT_EQ(safeFolderName(".ssh"), "_ssh");
  EXPECT_EQ(safeFolderName("a/.b"), "a/_b");
  EXPECT_EQ(safeFolderName("..."), "_..");
}

TEST(SafeFolderName, ReplacesControlCharacters) {
  EXPECT_EQ(safeFolderName(std::string("a\0b\nc\x7F", 6)), "a_b_c_");
}

TEST(SafeFolderName, CutsWhatIsTooLongBetweenCharacters) {
  EXPECT_EQ(safeFolderName(std::string(300, 'x') + "/y"), std::string(255, 'x') + "/y");
  EXPECT_EQ(safeFolderName(std::string(254, 'x') + "ü"), std::string(254, 'x'));
  EXPECT_EQ(safeFolderName(std::string(400, '\x80')), "");  // no character at all
}

}  // namespace
}  // namespace zantrio
