#include "bridge/query_handler_base.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "src/fakes/fake_query_callback.h"
#include "support/log_capture.h"

namespace zantrio {
namespace {

using test::FakeQueryCallback;
using test::LogCapture;

class Handler : public CQueryHandlerBase {
 public:
  Handler() {
    registerMethod("zeta", &Handler::echo);
    registerMethod("Alpha", &Handler::echo);
    registerMethod("throws", &Handler::throwStandard);
    registerMethod("throwsOther", &Handler::throwOther);
    registerMethod("missing", static_cast<Json::Value (Handler::*)(const Json::Value&)>(nullptr));
    registerMethod("replaced", &Handler::throwStandard);
    registerMethod("replaced", &Handler::echo);
  }

 private:
  Json::Value echo(const Json::Value& parameters) { return parameters; }
  Json::Value throwStandard(const Json::Value&) { throw std::runtime_error("no luck"); }
  Json::Value throwOther(const Json::Value&) { throw 5; }
};

class QueryDispatch : public testing::Test {
 protected:
  bool query(const std::string& request) {
    callback = new FakeQueryCallback;
    return handler.OnQuery(nullptr, nullptr, 1, request, false, callback);
  }
  void expectFailure(const std::string& request, const std::string& text) {
    EXPECT_TRUE(query(request)) << request;
    EXPECT_EQ(callback->failures, std::vector<std::string>{"-1 " + text}) << request;
    EXPECT_TRUE(callback->successes.empty()) << request;
  }
  void expectAnswer(const std::string& request, const std::string& answer) {
    EXPECT_TRUE(query(request)) << request;
    EXPECT_EQ(callback->successes, std::vector<std::string>{answer}) << request;
    EXPECT_TRUE(callback->failures.empty()) << request;
  }

  LogCapture log;
  Handler handler;
  CefRefPtr<FakeQueryCallback> callback;
};

TEST_F(QueryDispatch, RefusesWithFixedTexts) {
  for (const char* request : {"abc", "", "{", "[1,]", R"({"method":"zeta",})", "\xEF\xBB\xBF{}",
                              R"({"method":"zeta","parameters":+1})"}) {
    expectFailure(request, "Failed to parse JSON");
  }
  EXPECT_EQ(log.lines().back(), "error Failed to parse JSON!");
  for (const char* request : {"{}", "null", R"({"method":5})", R"({"method":{}})"}) {
    expectFailure(request, "Key 'method' not found in input json!");
  }
  EXPECT_EQ(log.lines().back(), "error Key 'method' not found in input json");
  expectFailure(R"({"method":"throws"})", "Exception caught when executing query handler: no luck");
  EXPECT_EQ(log.lines().back(), "error Exception when executing query: no luck");
  expectFailure(R"({"method":"throwsOther"})", "Exception caught when executing query handler");
  EXPECT_EQ(log.lines().back(), "error Objective-C Exception caught when executing query handler");
  EXPECT_TRUE(query("[1]"));
  ASSERT_EQ(callback->failures.size(), 1U);
  EXPECT_EQ(callback->failures[0].find("-1 Exception caught when executing query handler: "), 0U);
}

TEST_F(QueryDispatch, LeavesAMethodUnansweredThatIsUnknownOrHasNoFunction) {
  for (const auto& [method, state] : {std::pair{"nope", "not registered"}, {"missing", "NULL"}}) {
    EXPECT_FALSE(query(std::string(R"({"method":")") + method + "\"}"));
    EXPECT_TRUE(callback->failures.empty());
    EXPECT_EQ(log.lines().back(),
              "error Handler for method " + std::string(method) + " is " + state + "!");
  }
  EXPECT_FALSE(handler.OnQuery(nullptr, nullptr, 1, "{}", false, nullptr));
}

TEST_F(QueryDispatch, LogsARequestAndHandsItsParametersOverAsTheyStand) {
  expectAnswer(R"({"method":"zeta"})", "null\n");
  EXPECT_EQ(log.lines().front(), R"(information Received query: {"method":"zeta"})");
  expectAnswer(R"(/* why */ {"method":"zeta", "parameters": [1, "ä", {"b":2.5,"a":true}]})",
               "[1,\"\\u00e4\",{\"a\":true,\"b\":2.5}]\n");
  expectAnswer(R"({"method":"replaced","parameters":7})", "7\n");
  expectAnswer(R"({"method":"supportedMethods"})",
               "[\"Alpha\",\"missing\",\"replaced\",\"supportedMethods\",\"throws\","
               "\"throwsOther\",\"zeta\"]\n");
}

}  // namespace
}  // namespace zantrio
