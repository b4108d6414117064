#include <gtest/gtest.h>

#include "http/error_document.h"
#include "http/etag.h"
#include "http/retry_after.h"

namespace zt_transfers::test {
namespace {

const std::string kDigest = "d41d8cd98f00b204e9800998ecf8427e";

TEST(Md5OfETag, ReadsQuotedWeakAndPlainDigests) {
  EXPECT_EQ(md5OfETag("\"" + kDigest + "\""), kDigest);
  EXPECT_EQ(md5OfETag("W/\"" + kDigest + "\""), kDigest);
  EXPECT_EQ(md5OfETag(" D41D8CD98F00B204E9800998ECF8427E "), kDigest);
}

TEST(Md5OfETag, FindsNoDigestInOtherTags) {
  for (const std::string& tag :
       {std::string(), std::string("\"\""), "\"" + kDigest + "-5\"", kDigest + "0",
        std::string("\"5f3e-1a2b\""), "\"" + kDigest.substr(1) + "g\""}) {
    EXPECT_FALSE(md5OfETag(tag).has_value()) << tag;
  }
}

TEST(ErrorDocument, IsKnownByItsRootElement) {
  EXPECT_EQ(errorDocumentCode("<Error><Code>SlowDown</Code></Error>"), "SlowDown");
  EXPECT_EQ(errorDocumentCode("\xEF\xBB\xBF \n<?xml version=\"1.0\"?><!-- <x> -->\n"
                              "<Error xmlns=\"a\"><Message/><Code> InternalError </Code>"),
            "InternalError");
  EXPECT_EQ(errorDocumentCode("<Error/>"), "unnamed");
  EXPECT_FALSE(errorDocumentCode("").has_value());
  EXPECT_FALSE(errorDocumentCode("<Errors/>").has_value());
  EXPECT_FALSE(errorDocumentCode("<Result><Error/></Result>").has_value());
  EXPECT_FALSE(errorDocumentCode("<?xml never ends").has_value());
  EXPECT_FALSE(errorDocumentCode("Error").has_value());
}

TEST(RetryAfter, ReadsSecondsAndDates) {
  using std::chrono::seconds;
  EXPECT_EQ(parseRetryAfter("120", 0), seconds(120));
  EXPECT_EQ(parseRetryAfter("  0 ", 0), seconds(0));
  EXPECT_EQ(parseRetryAfter("Sun, 06 Nov 1994 08:49:37 GMT", 784111777 - 30), seconds(30));
  EXPECT_EQ(parseRetryAfter("Sun, 06 Nov 1994 08:49:37 GMT", 784111777 + 30), seconds(0));
  EXPECT_EQ(parseRetryAfter("-5", 0), seconds(0));
  EXPECT_FALSE(parseRetryAfter("", 0).has_value());
  EXPECT_FALSE(parseRetryAfter("soon", 0).has_value());
  EXPECT_GT(parseRetryAfter("99999999999999999999999", 0), seconds(1000));
}

}  // namespace
}  // namespace zt_transfers::test
