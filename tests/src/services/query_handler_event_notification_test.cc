#include "services/query_handler_event_notification.h"

#include <gtest/gtest.h>

#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"

namespace zantrio {
namespace {

using test::askBridge;
using test::FakeServices;

class NotificationBridge : public testing::Test {
 protected:
  NotificationBridge() { services.reset(); }

  FakeServices& services = FakeServices::instance();
  CQueryHandlerEventNotification handler;
};

TEST_F(NotificationBridge, HandsTitleMessageAndUrlToTheDesktop) {
  EXPECT_EQ(askBridge(handler, "handleEvent",
                      R"({"properties":{"title":"Grüße 日本","message":"2 files","url":"/t/1"}})"),
            "null\n");
  EXPECT_EQ(services.calls, std::vector<std::string>{"notify Grüße 日本|2 files|/t/1"});
}

TEST_F(NotificationBridge, ShowsEmptyTextsForWhatIsMissing) {
  EXPECT_EQ(askBridge(handler, "handleEvent"), "null\n");
  EXPECT_EQ(askBridge(handler, "handleEvent", R"({"properties":{"message":5}})"), "null\n");
  EXPECT_EQ(services.calls, (std::vector<std::string>{"notify ||", "notify |5|"}));
}

TEST_F(NotificationBridge, AnswersAFailureForWhatIsNoText) {
  for (const char* parameters :
       {R"({"properties":"text"})", R"({"properties":[1]})", R"({"properties":{"title":{}}})"}) {
    EXPECT_EQ(askBridge(handler, "handleEvent", parameters)
                  .find("-1 Exception caught when executing query handler: "),
              0U)
        << parameters;
  }
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(NotificationBridge, AnswersNullWithoutAPlatformService) {
  services.available = false;
  EXPECT_EQ(askBridge(handler, "handleEvent", R"({"properties":{"title":"t"}})"), "null\n");
  EXPECT_EQ(askBridge(handler, "supportedMethods"), "[\"handleEvent\",\"supportedMethods\"]\n");
}

}  // namespace
}  // namespace zantrio
