#include "app/text/utf8_text.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(Utf8Text, ReplacesEachByteThatBelongsToNoCharacter) {
  const std::string valid = "a\u00E9\u20AC\U0001F600\u0000z";
  const std::pair<std::string, std::string> cases[] = {
      {valid, valid},
      {"", ""},
      {"a\xFF\xFE z", "a\uFFFD\uFFFD z"},
      {"cut \xE2\x82", "cut \uFFFD\uFFFD"},
      // Overlong forms, surrogates and values beyond Unicode.
      {"\xC0\xAF", "\uFFFD\uFFFD"},
      {"\xE0\x80\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(toValidUtf8(text), expected);
  }
}

}  // namespace
}  // namespace zantrio
