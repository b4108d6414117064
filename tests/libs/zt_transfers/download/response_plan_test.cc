#include "download/response_plan.h"

#include <gtest/gtest.h>

namespace zt_transfers::test {
namespace {

using Kind = FetchPlan::Kind;

HttpResponse response(long status, std::map<std::string, std::string, std::less<>> headers) {
  HttpResponse head;
  head.status = status;
  head.headers = std::move(headers);
  return head;
}

RangeRequest restOf(std::uint64_t begin, std::uint64_t size) {
  RangeRequest rangeRequest;
  rangeRequest.begin = begin;
  rangeRequest.ranged = true;
  rangeRequest.validator = "\"v1\"";
  rangeRequest.size = size;
  return rangeRequest;
}

TEST(ContentRangeHeader, IsTakenOnlyWhenItMakesSense) {
  const auto range = parseContentRange("bytes 5-9/10");
  ASSERT_TRUE(range.has_value());
  EXPECT_EQ(range->first, 5U);
  EXPECT_EQ(range->end, 10U);
  EXPECT_EQ(range->total, 10U);
  EXPECT_FALSE(parseContentRange("bytes 0-0/*")->total.has_value());
  EXPECT_FALSE(parseContentRange("bytes */10")->first.has_value());
  for (const char* wrong :
       {"", "bytes", "bytes 5-4/10", "bytes 5-10/10", "bytes 5-9", "bytes -9/10", "bytes 5-/10",
        "bytes a-9/10", "bytes 5-9/ten", "bytes 0x1-9/10", "items 5-9/10", "bytes +5-9/10",
        "bytes 0-99999999999999999999/*", "bytes 0-9223372036854775808/*"}) {
    EXPECT_FALSE(parseContentRange(wrong).has_value()) << wrong;
  }
}

TEST(PlanResponse, TakesAWholeAnswerFromTheFirstByteWhateverWasAsked) {
  const auto plan =
      planResponse(response(200, {{"content-length", "9"}, {"etag", "\"v2\""}}), restOf(5, 10));
  EXPECT_EQ(plan.kind, Kind::kBody);
  EXPECT_EQ(plan.begin, 0U);
  EXPECT_EQ(plan.size, 9U);
  EXPECT_EQ(plan.validator, "\"v2\"");
  EXPECT_FALSE(planResponse(response(200, {{"content-length", "-1"}}), {}).size.has_value());
}

TEST(PlanResponse, TakesARangeOnlyOfTheSameVersionAndWhereItWasAsked) {
  const auto planned = [](const char* range, const char* etag) {
    return planResponse(response(206, {{"content-range", range}, {"etag", etag}}), restOf(5, 10));
  };
  EXPECT_EQ(planned("bytes 5-9/10", "\"v1\"").kind, Kind::kBody);
  EXPECT_EQ(planned("bytes 5-7/10", "\"v1\"").end, 8U);
  EXPECT_EQ(planned("bytes 5-9/10", "\"v2\"").kind, Kind::kStartOver);
  EXPECT_EQ(planned("bytes 5-9/11", "\"v1\"").kind, Kind::kStartOver);
  EXPECT_EQ(planned("bytes 4-9/10", "\"v1\"").kind, Kind::kStartOver);
  EXPECT_EQ(planned("bytes 6-9/10", "\"v1\"").kind, Kind::kStartOver);
  EXPECT_EQ(planned("bytes */10", "\"v1\"").kind, Kind::kStartOver);
  EXPECT_EQ(planResponse(response(206, {{"content-range", "bytes 0-9/10"}}), {}).kind,
            Kind::kStartOver);
}

TEST(PlanResponse, TakesARangeWhoseHeadDoesNotRepeatTheCondition) {
  const auto planned = [](const char* condition,
                          std::map<std::string, std::string, std::less<>> headers) {
    RangeRequest rest = restOf(5, 10);
    rest.validator = condition;
    headers["content-range"] = "bytes 5-9/10";
    return planResponse(response(206, std::move(headers)), rest).kind;
  };
  EXPECT_EQ(planned("a date", {}), Kind::kBody);
  EXPECT_EQ(planned("a date", {{"etag", "W/\"v1\""}}), Kind::kBody);
  EXPECT_EQ(planned("a date", {{"last-modified", "a date"}, {"etag", "\"v1\""}}), Kind::kBody);
  EXPECT_EQ(planned("a date", {{"last-modified", "another"}}), Kind::kStartOver);
  EXPECT_EQ(planned("\"v1\"", {{"etag", "W/\"v1\""}}), Kind::kBody);
  EXPECT_EQ(planned("\"v1\"", {{"etag", "W/\"v2\""}}), Kind::kStartOver);
  EXPECT_EQ(planned("\"v1\"", {}), Kind::kStartOver);
}

TEST(PlanResponse, TakesNothingLeftForAllThereOnlyWhenTheSizeIsRight) {
  const auto planned = [](const char* range) {
    return planResponse(response(416, {{"content-range", range}}), restOf(10, 10)).kind;
  };
  EXPECT_EQ(planned("bytes */10"), Kind::kComplete);
  EXPECT_EQ(planned("bytes */9"), Kind::kStartOver);
  EXPECT_EQ(planned(""), Kind::kStartOver);
  EXPECT_EQ(planResponse(response(416, {}), {}).kind, Kind::kOther);
}

TEST(PlanResponse, TakesNoOtherAnswerForContent) {
  for (const long status : {100L, 201L, 204L, 205L, 302L, 304L, 404L, 500L}) {
    EXPECT_EQ(planResponse(response(status, {{"content-length", "5"}}), {}).kind, Kind::kOther);
  }
}

TEST(ValidatorOf, PrefersAStrongTagAndTakesNoWeakOne) {
  EXPECT_EQ(validatorOf(response(200, {{"etag", "\"a\""}, {"last-modified", "d"}})), "\"a\"");
  EXPECT_EQ(validatorOf(response(200, {{"etag", "W/\"a\""}, {"last-modified", "d"}})), "d");
  EXPECT_EQ(validatorOf(response(200, {{"etag", "W/\"a\""}})), "");
}

}  // namespace
}  // namespace zt_transfers::test
