#include "app/text/utf8_text.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(Utf8Text, KeepsEveryLengthOfCharacter) {
  const std::string text = "a\u00E9\u20AC\U0001F600\u0000z";
  EXPECT_EQ(toValidUtf8(text), text);
  EXPECT_EQ(toValidUtf8(""), "");
}

TEST(Utf8Text, ReplacesEachByteThatBelongsToNoCharacter) {
  EXPECT_EQ(toValidUtf8("a\xFF\xFE z"), "a\uFFFD\uFFFD z");
  EXPECT_EQ(toValidUtf8("caf\xE9.txt"), "caf\uFFFD.txt");
  EXPECT_EQ(toValidUtf8("cut \xE2\x82"), "cut \uFFFD\uFFFD");
}

TEST(Utf8Text, ReplacesOverlongFormsSurrogatesAndValuesBeyondUnicode) {
  EXPECT_EQ(toValidUtf8("\xC0\xAF"), "\uFFFD\uFFFD");
  EXPECT_EQ(toValidUtf8("\xE0\x80\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(toValidUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(toValidUtf8("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD");
}

}  // namespace
}  // namespace zantrio
