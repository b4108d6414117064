#include <gtest/gtest.h>

#include "include/internal/cef_string.h"
#include "include/internal/cef_types_wrappers.h"

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

TEST(CefString, WritesTheFieldItStandsFor) {
  CefSettings settings;
  CefString(&settings.cache_path) = "/first";
  CefString(&settings.cache_path) = std::string("/data/cache");
  EXPECT_EQ(CefString(&settings.cache_path).ToString(), "/data/cache");
  const CefSettings copy(settings);
  CefString(&settings.cache_path) = "/other";
  EXPECT_EQ(CefString(&copy.cache_path).ToString(), "/data/cache");
  settings = copy;
  EXPECT_EQ(CefString(&settings.cache_path).ToString(), "/data/cache");
}

TEST(CefString, CopiesAreIndependentAndCompareByContents) {
  CefString first("abc");
  CefString second(first);
  second = "abd";
  EXPECT_EQ(first, "abc");
  EXPECT_LT(first, second);
  const CefString moved(std::move(second));
  EXPECT_EQ(moved.ToString(), "abd");
  first.clear();
  EXPECT_TRUE(first.empty());
  EXPECT_TRUE(CefString(static_cast<const char*>(nullptr)).empty());
}

}  // namespace
