#include "transfers/safe_folder_name.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(SafeFolderName, StaysBelowItsFolderHidesNothingAndFitsAFileSystem) {
  for (const char* name : {"", "Holiday", "100% Grüße: #1?", "a/b c/日本", "~", "v1.2", "a..b"}) {
    EXPECT_EQ(safeFolderName(name), name);
  }
  const std::pair<std::string, std::string> cases[] = {
      {"../../etc", "etc"},
      {"a/../../b", "a/b"},
      {"/etc/passwd", "etc/passwd"},
      {"a//./b/", "a/b"},
      {"..", "Message"},
      {"/", "Message"},
      {" /./..", "Message"},
      {std::string("..\0/x", 5), "_._/x"},
      {".ssh", "_ssh"},
      {"a/.b", "a/_b"},
      {"...", "_.."},
      {"-rf/--x", "_rf/_-x"},
      {"a\u202Eb\u200B\u009B\u00ADc", "a_b___c"},
      {"می\u200Cخ", "می\u200Cخ"},
      {std::string("a\0b\nc\x7F", 6), "a_b_c_"},
      {std::string(300, 'x') + "/y", std::string(255, 'x') + "/y"},
      {std::string(254, 'x') + "ü", std::string(254, 'x')},
      {std::string(400, '\x80'), "Message"},  // not one character
  };
  for (const auto& [text, name] : cases) {
    EXPECT_EQ(safeFolderName(text), name);
  }
}

}  // namespace
}  // namespace zantrio
