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

TEST(Redirect, TakesToAnotherServerOnlyWhatIsKnownToBeNoCredential) {
  const HttpHeaders secrets = {{"AUTHORIZATION", "a"},
                               {"Cookie", "b"},
                               {"X-Api-Key", "c"},
                               {"Proxy-Authorization", "d"},
                               {"x-amz-server-side-encryption-customer-key", "e"},
                               {"Host", "f"}};
  const HttpHeaders kept = {{"Content-Type", "g"}, {"X-Amz-Meta-Name", "h"}, {"If-Range", "i"}};
  HttpHeaders headers = secrets;
  headers.insert(headers.end(), kept.begin(), kept.end());
  EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", "http://A:80/y"), headers);
  for (const char* other : {"http://b/x", "http://a:81/x", "https://a/x"}) {
    EXPECT_EQ(headersAfterRedirect(headers, "http://a/x", other), kept) << other;
  }
}

TEST(Redirect, FetchesFromElsewhereButSendsNothingThereAfterASeeOther) {
  EXPECT_TRUE(isRedirect(303, "GET"));
  EXPECT_FALSE(isRedirect(303, "PUT"));
  EXPECT_TRUE(isRedirect(307, "PUT"));
}

}  // namespace
}  // namespace zt_transfers::test
