#include "http/redirect.h"

#include <gtest/gtest.h>

namespace zt_transfers::test {
namespace {

std::optional<std::string> target(const std::string& url, const std::string& location) {
  HttpResponse response;
  response.headers["location"] = location;
  return redirectTarget(url, response);
}

TEST(Redirect, ResolvesItsTarget) {
  EXPECT_EQ(target("http://a/b/c?x=1", "d?y=2"), "http://a/b/d?y=2");
  EXPECT_EQ(target("http://a/b", "/z"), "http://a/z");
  EXPECT_EQ(target("http://a/b", "https://other/z"), "https://other/z");
}

TEST(Redirect, GoesNeitherNowhereNorDownToAnUnprotectedOrForeignProtocol) {
  EXPECT_FALSE(redirectTarget("http://a/b", HttpResponse()).has_value());
  EXPECT_FALSE(target("https://a/b", "http://a/b").has_value());
  EXPECT_FALSE(target("http://a/b", "file:///etc/passwd").has_value());
  EXPECT_FALSE(target("http://a/b", "ftp://a/b").has_value());
}

TEST(Redirect, TakesCredentialsAlongToTheSameServerOnly) {
  const HttpHeaders headers = {
      {"AUTHORIZATION", "a"}, {"Cookie", "b"}, {"X-Amz-Security-Token", "c"}, {"X-Other", "d"}};
  EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", "http://A:80/y"), headers);
  const HttpHeaders kept = {{"X-Other", "d"}};
  EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", "http://b/x"), kept);
  EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", "http://a:81/x"), kept);
  EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", "https://a/x"), kept);
}

}  // namespace
}  // namespace zt_transfers::test
