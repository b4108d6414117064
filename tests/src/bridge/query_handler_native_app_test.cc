#include "services/query_handler_native_app.h"

#include <gtest/gtest.h>

#include "bridge/query_handler_context.h"
#include "browser/web_app_life_cycle_callback.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/log_capture.h"

namespace zantrio {
namespace {

using test::FakeQueryCallback;
using test::FakeServices;
using test::LogCapture;

struct LifeCycle final : IWebAppLifeCycleCallback {
  void onStartup() override { ++startups; }
  void onShutdown() override { ++shutdowns; }
  int startups = 0;
  int shutdowns = 0;
};

class NativeAppBridge : public testing::Test {
 protected:
  NativeAppBridge() { FakeServices::instance().reset(); }

  std::vector<std::string> answer(const std::string& request) {
    const CefRefPtr<FakeQueryCallback> callback(new FakeQueryCallback);
    handler.OnQuery(nullptr, nullptr, 1, request, false, callback);
    return callback->failures.empty() ? callback->successes : callback->failures;
  }

  const std::vector<std::string> null{"null\n"};
  LogCapture log;
  CQueryHandlerNativeApp handler;
};

TEST_F(NativeAppBridge, OnlyLogsBeforeTheBrowserClientIsKnown) {
  EXPECT_EQ(answer(R"({"method":"onAppReady"})"), null);
  EXPECT_EQ(answer(R"({"method":"onAppExit"})"), null);
  EXPECT_TRUE(log.contains("information QueryHandlerNativeApp: App ready"));
  EXPECT_TRUE(log.contains("information QueryHandlerNativeApp: onAppExit called"));
}

TEST_F(NativeAppBridge, PassesReadinessAndExitOnToTheLastContextsCallback) {
  LifeCycle first;
  LifeCycle second;
  QueryHandlerContext context;
  context.lifeCycleCallback = &first;
  handler.setHandlerData(context);
  context.lifeCycleCallback = &second;
  handler.setHandlerData(context);
  answer(R"({"method":"onAppReady"})");
  answer(R"({"method":"onAppExit"})");
  EXPECT_EQ(second.startups, 1);
  EXPECT_EQ(second.shutdowns, 1);
  EXPECT_EQ(first.startups + first.shutdowns, 0);
}

TEST_F(NativeAppBridge, HandsUrlsAndTextsToThePlatform) {
  EXPECT_EQ(answer(R"({"method":"openURL","parameters":{"url":"http://a/b"}})"), null);
  EXPECT_EQ(answer(R"({"method":"copyToClipboard","parameters":{"value":"x ä"}})"), null);
  EXPECT_EQ(answer(R"({"method":"openURL"})"), null);
  EXPECT_EQ(FakeServices::instance().calls,
            (std::vector<std::string>{"url http://a/b", "copy x ä", "url "}));
}

TEST_F(NativeAppBridge, AnswersAFailureForAValueThatIsNoText) {
  const auto failures = answer(R"({"method":"copyToClipboard","parameters":{"value":{}}})");
  ASSERT_EQ(failures.size(), 1U);
  EXPECT_EQ(failures[0].find("-1 Exception caught when executing query handler: "), 0U);
  EXPECT_TRUE(FakeServices::instance().calls.empty());
}

TEST_F(NativeAppBridge, AnswersNullWhenThePlatformHasNoService) {
  FakeServices::instance().available = false;
  EXPECT_EQ(answer(R"({"method":"openURL","parameters":{"url":"http://a/b"}})"), null);
  EXPECT_EQ(answer(R"({"method":"copyToClipboard"})"), null);
}

TEST_F(NativeAppBridge, ListsItsMethods) {
  EXPECT_EQ(
      answer(R"({"method":"supportedMethods"})"),
      (std::vector<std::string>{
          "[\"copyToClipboard\",\"onAppExit\",\"onAppReady\",\"openURL\",\"supportedMethods\"]"
          "\n"}));
}

}  // namespace
}  // namespace zantrio
