#include "services/query_handler_native_app.h"

#include <gtest/gtest.h>

#include "bridge/query_handler_context.h"
#include "bridge/web_app_life_cycle_callback.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "support/log_capture.h"

namespace zantrio {
namespace {

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

  std::string answer(const std::string& method, const std::string& parameters = "null") {
    return test::askBridge(handler, method, parameters);
  }

  LogCapture log;
  CQueryHandlerNativeApp handler;
};

TEST_F(NativeAppBridge, OnlyLogsBeforeTheBrowserClientIsKnown) {
  EXPECT_EQ(answer("onAppReady"), "null\n");
  EXPECT_EQ(answer("onAppExit"), "null\n");
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
  answer("onAppReady");
  answer("onAppExit");
  EXPECT_EQ(second.startups, 1);
  EXPECT_EQ(second.shutdowns, 1);
  EXPECT_EQ(first.startups + first.shutdowns, 0);
}

TEST_F(NativeAppBridge, HandsUrlsAndTextsToThePlatform) {
  EXPECT_EQ(answer("openURL", R"({"url":"http://a/b"})"), "null\n");
  EXPECT_EQ(answer("copyToClipboard", R"({"value":"x ä"})"), "null\n");
  EXPECT_EQ(answer("openURL"), "null\n");
  EXPECT_EQ(FakeServices::instance().calls,
            (std::vector<std::string>{"url http://a/b", "copy x ä", "url "}));
}

TEST_F(NativeAppBridge, AnswersAFailureForAValueThatIsNoText) {
  EXPECT_EQ(answer("copyToClipboard", R"({"value":{}})")
                .find("-1 Exception caught when executing query handler: "),
            0U);
  EXPECT_TRUE(FakeServices::instance().calls.empty());
}

TEST_F(NativeAppBridge, AnswersNullWhenThePlatformHasNoService) {
  FakeServices::instance().available = false;
  EXPECT_EQ(answer("openURL", R"({"url":"http://a/b"})"), "null\n");
  EXPECT_EQ(answer("copyToClipboard"), "null\n");
}

TEST_F(NativeAppBridge, ListsItsMethods) {
  EXPECT_EQ(
      answer("supportedMethods"),
      "[\"copyToClipboard\",\"onAppExit\",\"onAppReady\",\"openURL\",\"supportedMethods\"]\n");
}

}  // namespace
}  // namespace zantrio
