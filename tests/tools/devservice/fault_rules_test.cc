#include "devservice/fault_rules.h"

#include <gtest/gtest.h>

#include <sstream>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

Json::Value parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

}  // namespace

TEST(FaultRules, MatchAnyTextByStarsAndOneByteByQuestionMarks) {
  EXPECT_TRUE(matchesPattern("*", ""));
  EXPECT_TRUE(matchesPattern("/storage/*/a*.jpg", "/storage/b1/x/abc.jpg"));
  EXPECT_TRUE(matchesPattern("a?c*", "abc"));
  EXPECT_TRUE(matchesPattern("*ab*ab", "xabab"));
  EXPECT_FALSE(matchesPattern("a?c", "ac"));
  EXPECT_FALSE(matchesPattern("*.jpg", "a.jpg.part"));
  EXPECT_FALSE(matchesPattern("", "a"));
}

TEST(FaultRules, ApplyOldestFirstBetweenSkipAndCount) {
  CFaultRules rules;
  rules.add(parsed(R"({"type":"reset","method":"PUT","path":"*.jpg","skip":1,"count":2})"));
  rules.add(parsed(R"({"type":"stall","skip":7})"));
  std::vector<Fault::Type> faults;
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(rules.match("PUT", "/a.png").type, Fault::Type::kNone);
    faults.push_back(rules.match("PUT", "/a.jpg").type);
  }
  using enum Fault::Type;
  EXPECT_EQ(faults, (std::vector{kNone, kReset, kReset, kNone, kStall}));
  EXPECT_EQ(rules.list()[0]["used"].asInt(), 2);
  rules.clear();
  rules.add(parsed(R"({"type":"etag","query":"partNumber=2&*"})"));
  EXPECT_EQ(rules.match("PUT", "/a", "partNumber=1&uploadId=2").type, kNone);
  EXPECT_EQ(rules.match("PUT", "/a", "partNumber=2&uploadId=2").type, kEtag);
}

TEST(FaultRules, RefuseInvalidRules) {
  CFaultRules rules;
  for (const char* text :
       {R"("text")", "{}", R"({"type":"explode"})", R"({"type":"delay"})", R"({"type":"rate"})",
        R"({"type":"status","status":42})", R"({"type":"rate","bytesPerSecond":0})",
        R"({"type":"reset","afterBytes":-1})"}) {
    EXPECT_THROW(rules.add(parsed(text)), CHttpError) << text;
  }
  EXPECT_EQ(rules.list().size(), 0U);
}

}  // namespace zantrio::devservice
