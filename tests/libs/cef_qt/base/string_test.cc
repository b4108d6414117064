#include <gtest/gtest.h>

#include "include/internal/cef_string.h"

namespace {

using namespace std::string_literals;

TEST(CefString, ConvertsBetweenUtf8Utf16AndWideText) {
  const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  const CefString text(utf8);
  EXPECT_EQ(text.length(), 5u);
  EXPECT_EQ(text.ToString16(), u"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(text.ToString(), utf8);
  EXPECT_EQ(text.ToWString(), L"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(CefString(text.ToWString()), text);
  EXPECT_EQ(CefString(u"a\u00E9\u20AC\U0001F600"s), text);
}

TEST(CefString, KeepsNulAndLoneSurrogatesInUtf16AndReplacesThemInUtf8) {
  const std::u16string odd = u"a\0b\xD800"s + u"c\xDC00"s;
  EXPECT_EQ(CefString(odd).ToString16(), odd);
  EXPECT_EQ(CefString(odd).ToString(), "a\0b\xEF\xBF\xBD"s + "c\xEF\xBF\xBD"s);
}

TEST(CefString, ReplacesMalformedUtf8) {
  EXPECT_EQ(CefString("a\xC3").ToString16(), u"a\uFFFD");
  EXPECT_EQ(CefString("\xC0\xAFz").ToString16(), u"\uFFFD\uFFFDz");            // overlong
  EXPECT_EQ(CefString("\xED\xA0\x80z").ToString16(), u"\uFFFD\uFFFD\uFFFDz");  // surrogate
  EXPECT_EQ(CefString("\xF4\x90\x80\x80").ToString16(), u"\uFFFD\uFFFD\uFFFD\uFFFD");
}

}  // namespace
