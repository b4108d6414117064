// The bridges to the clipboard, URLs, notifications and contacts.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "bridge/query_handler_context.h"
#include "bridge/web_app_life_cycle_callback.h"
#include "services/address_book.h"
#include "services/query_handler_address_book_manager.h"
#include "services/query_handler_event_notification.h"
#include "services/query_handler_native_app.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "support/log_capture.h"

namespace zantrio {
namespace {

using Texts = std::vector<std::string>;

class ServiceBridges : public testing::Test {
 protected:
  ServiceBridges() { services.reset(); }

  // The response of a new handler, which uses the platform as it is now.
  template <class Handler>
  static std::string ask(const std::string& method, const std::string& parameters = "null") {
    Handler handler;
    return test::askBridge(handler, method, parameters);
  }
  static std::string app(const std::string& method, const std::string& parameters = "null") {
    return ask<CQueryHandlerNativeApp>(method, parameters);
  }
  static std::string notify(const std::string& parameters) {
    return ask<CQueryHandlerEventNotification>("handleEvent", parameters);
  }
  static std::string search(const std::string& parameters) {
    return ask<CQueryHandlerAddressBookManager>("search", parameters);
  }

  test::FakeServices& services = test::FakeServices::instance();
  test::LogCapture log;
};

TEST_F(ServiceBridges, HandTextsToThePlatform) {
  const std::tuple<std::string, const char*, const char*> cases[] = {
      {app("openURL", R"({"url":"http://a/b"})"), "null\n", "url http://a/b"},
      {app("copyToClipboard", R"({"value":"x ä"})"), "null\n", "copy x ä"},
      {notify(R"({"properties":{"title":"Grüße 日本","message":"2 files","url":"/t/1"}})"),
       "null\n", "notify Grüße 日本|2 files|/t/1"},
      {notify("null"), "null\n", "notify ||"},
      {notify(R"({"properties":{"message":5}})"), "null\n", "notify |5|"},
      {search(R"({"query":"ann"})"), "[]\n", "search ann"},
      {search("null"), "[]\n", "search "},
  };
  Texts calls;
  for (const auto& [response, expected, call] : cases) {
    EXPECT_EQ(response, expected) << call;
    calls.emplace_back(call);
  }
  EXPECT_EQ(services.calls, calls);
}

TEST_F(ServiceBridges, TellTheLogWhichUrlWasRefused) {
  EXPECT_EQ(app("openURL", R"({"url":"http://a/b"})"), "null\n");
  EXPECT_EQ(app("openURL", R"({"url":"file:///x?token=abc"})"), "null\n");
  const auto lines = log.lines();
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const auto& line) { return line.starts_with("warning "); }),
            1);
  EXPECT_TRUE(
      log.contains("warning QueryHandlerNativeApp: the URL was refused, or nothing can open it: "
                   "file:///x?token=***"));
}

TEST_F(ServiceBridges, FailForValuesThatAreNotTexts) {
  for (const std::string& response :
       {app("copyToClipboard", R"({"value":{}})"), notify(R"({"properties":"text"})"),
        notify(R"({"properties":[1]})"), notify(R"({"properties":{"title":{}}})"),
        search(R"({"query":{}})")}) {
    EXPECT_TRUE(response.starts_with("-1 Exception caught when executing query handler: "))
        << response;
  }
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(ServiceBridges, RespondWithNullWithoutAPlatformService) {
  services.available = false;
  for (const std::string& response :
       {app("openURL", R"({"url":"http://a/b"})"), app("copyToClipboard"),
        notify(R"({"properties":{"title":"t"}})"), search(R"({"query":"ann"})")}) {
    EXPECT_EQ(response, "null\n");
  }
  services.hasAddressBook = false;
  EXPECT_THROW(std::make_unique<CQueryHandlerAddressBookManager>(),
               IAddressBook::CAddressBookObtainError);
}

TEST_F(ServiceBridges, ListNamesAndAddressesInTheOrderOfTheAddressBook) {
  services.contacts = {{"Ann", "Lee", "z@example.org"},
                       {"Ann", "Lee", "a@example.org"},
                       {"Анна", "", ""},
                       {"", "", "b@example.org"},
                       {},
                       {"", "Lee", ""}};
  EXPECT_EQ(search(R"({"query":"ann"})"),
            R"([{"email":"z@example.org","name":"Ann Lee"},)"
            R"({"email":"a@example.org","name":"Ann Lee"},{"name":"\u0410\u043d\u043d\u0430"},)"
            R"({"email":"b@example.org"},null,{"name":"Lee"}])"
            "\n");
}

struct LifeCycle final : IWebAppLifeCycleCallback {
  void onStartup() override { calls += "startup "; }
  void onShutdown() override { calls += "shutdown "; }
  std::string calls;
};

TEST_F(ServiceBridges, ReportReadinessAndExitToTheLastLifeCycleCallback) {
  CQueryHandlerNativeApp handler;
  LifeCycle first;
  LifeCycle second;
  QueryHandlerContext context;
  for (LifeCycle* callback : {&first, &second}) {
    context.lifeCycleCallback = callback;
    handler.setHandlerData(context);
  }
  EXPECT_EQ(test::askBridge(handler, "onAppReady"), "null\n");
  EXPECT_EQ(test::askBridge(handler, "onAppExit"), "null\n");
  EXPECT_EQ(first.calls, "");
  EXPECT_EQ(second.calls, "startup shutdown ");
  EXPECT_TRUE(log.contains("information QueryHandlerNativeApp: App ready"));
  EXPECT_TRUE(log.contains("information QueryHandlerNativeApp: onAppExit called"));
}

}  // namespace
}  // namespace zantrio
