#include "app/register_query_handlers.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "bridge/query_handler_base.h"
#include "bridge/query_handler_registry.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "support/log_capture.h"

namespace zantrio {
namespace {

using test::FakeQueryCallback;
using test::LogCapture;

int handlersAlive = 0;

class CountedHandler : public CQueryHandlerBase {
 public:
  CountedHandler() {
    ++handlersAlive;
    registerMethod("close", &CountedHandler::close);
  }
  ~CountedHandler() override { --handlersAlive; }

 private:
  // Like a dialog during which the user closes the window.
  Json::Value close(const Json::Value&) {
    QueryHandlerRegistry::instance().clear();
    EXPECT_EQ(handlersAlive, 1);
    return "closed";
  }
};

QueryHandlerRegistry::HandlerPtr createCounted() {
  return new CountedHandler;
}

class BridgeRegistry : public testing::Test {
 protected:
  ~BridgeRegistry() override {
    registry.clear();
    EXPECT_EQ(handlersAlive, 0);
  }

  QueryHandlerRegistry& registry = QueryHandlerRegistry::instance();
};

TEST_F(BridgeRegistry, KeepsTheLatestHandlersThatCanBeMade) {
  const LogCapture log;
  const auto fail = []() -> QueryHandlerRegistry::HandlerPtr {
    throw std::runtime_error("no handler");
  };
  registerQueryHandlers({{"a", createCounted}});
  registerQueryHandlers({{"b", createCounted}, {"c", fail}, {"a", createCounted}});
  EXPECT_EQ(handlersAlive, 2);
  EXPECT_EQ(registry.entries().size(), 2U);
  EXPECT_TRUE(log.contains(
      "error Query handler for name c is not registered due to exception: no handler"));
}

TEST_F(BridgeRegistry, KeepsHandlersAliveUntilTheRunningQueryIsAnswered) {
  registerQueryHandlers({{"a", createCounted}});
  IQueryHandler* const handler = registry.entries().at("a").unsafeCast<IQueryHandler>().get();
  const CefRefPtr<FakeQueryCallback> callback(new FakeQueryCallback);
  EXPECT_TRUE(handler->OnQuery(nullptr, nullptr, 1, R"({"method":"close"})", false, callback));
  EXPECT_EQ(callback->successes, std::vector<std::string>{"\"closed\"\n"});
  EXPECT_EQ(handlersAlive, 0);
}

TEST_F(BridgeRegistry, HoldsTheApplicationsBridgesAlsoWithoutAnAddressBook) {
  std::vector<std::string> expected = {"addressBookSearchManagerBridge_IPC",
                                       "downloadManagerBridge_IPC",
                                       "eventNotificationBridge_IPC",
                                       "fileHandleChooserBridge_IPC",
                                       "nativeAppBridge_IPC",
                                       "uploadManagerBridge_IPC"};
  const auto names = [this] {
    std::vector<std::string> found;
    for (const auto& [name, handler] : registry.entries()) {
      found.push_back(name);
    }
    return found;
  };
  registerQueryHandlers();
  EXPECT_EQ(names(), expected);
  const LogCapture log;
  registry.clear();
  test::FakeServices::instance().hasAddressBook = false;
  registerQueryHandlers();
  test::FakeServices::instance().reset();
  expected.erase(expected.begin());
  EXPECT_EQ(names(), expected);
  EXPECT_TRUE(
      log.contains("error Query handler for name addressBookSearchManagerBridge_IPC is not "
                   "registered due to exception: Failed to obtain system address book reference!"));
}

}  // namespace
}  // namespace zantrio
