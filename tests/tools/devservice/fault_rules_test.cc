#include "devservice/fault_rules.h"

#include <gtest/gtest.h>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

Json::Value rule(const std::string& type) {
  Json::Value value;
  value["type"] = type;
  return value;
}

}  // namespace

TEST(MatchesPattern, TakesStarsForAnyTextAndQuestionMarksForOneByte) {
  EXPECT_TRUE(matchesPattern("*", ""));
  EXPECT_TRUE(matchesPattern("/storage/*/a*.jpg", "/storage/b1/x/abc.jpg"));
  EXPECT_TRUE(matchesPattern("a?c*", "abc"));
  EXPECT_TRUE(matchesPattern("*ab*ab", "xabab"));
  EXPECT_FALSE(matchesPattern("a?c", "ac"));
  EXPECT_FALSE(matchesPattern("*.jpg", "a.jpg.part"));
  EXPECT_FALSE(matchesPattern("", "a"));
}

TEST(FaultRules, HitsTheRequestsBetweenSkipAndCount) {
  CFaultRules rules;
  Json::Value value = rule("reset");
  value["method"] = "PUT";
  value["path"] = "*.jpg";
  value["skip"] = 1;
  value["count"] = 2;
  rules.add(value);
  std::vector<bool> hits;
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(rules.match("GET", "/a.jpg").type, Fault::Type::kNone);
    EXPECT_EQ(rules.match("PUT", "/a.png").type, Fault::Type::kNone);
    hits.push_back(rules.match("PUT", "/a.jpg").type == Fault::Type::kReset);
  }
  EXPECT_EQ(hits, (std::vector<bool>{false, true, true, false, false}));
  EXPECT_EQ(rules.list()[0]["used"].asInt(), 2);
}

TEST(FaultRules, AppliesTheOldestRuleThatIsNotUsedUp) {
  CFaultRules rules;
  Json::Value once = rule("status");
  once["count"] = 1;
  const int first = rules.add(once)["id"].asInt();
  rules.add(rule("stall"));
  EXPECT_EQ(rules.match("GET", "/").type, Fault::Type::kStatus);
  EXPECT_EQ(rules.match("GET", "/").type, Fault::Type::kStall);
  EXPECT_TRUE(rules.remove(first));
  EXPECT_FALSE(rules.remove(first));
  rules.clear();
  EXPECT_EQ(rules.match("GET", "/").type, Fault::Type::kNone);
}

TEST(FaultRules, RefusesRulesThatMakeNoSense) {
  CFaultRules rules;
  Json::Value badStatus = rule("status");
  badStatus["status"] = 42;
  Json::Value noRate = rule("rate");
  noRate["bytesPerSecond"] = 0;
  Json::Value negative = rule("reset");
  negative["afterBytes"] = -1;
  for (const Json::Value& value :
       {Json::Value("text"), Json::Value(Json::objectValue), rule("explode"), rule("delay"),
        rule("rate"), badStatus, noRate, negative}) {
    EXPECT_THROW(rules.add(value), CHttpError) << value.toStyledString();
  }
  EXPECT_EQ(rules.list().size(), 0U);
}

}  // namespace zantrio::devservice
