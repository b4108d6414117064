// Starts the framework before the first test of a program and ends it after the last.
#include <gtest/gtest.h>

#include "support/framework.h"

namespace cef_test {
namespace {

class FrameworkEnvironment final : public testing::Environment {
 public:
  void SetUp() override {
    prepareHeadless();
    CefSettings settings;
    CefString(&settings.log_file) = temporaryFolder() + "/browser.log";
    settings.windowless_rendering_enabled = 1;
    bool ready = false;
    ASSERT_TRUE(
        CefInitialize(CefMainArgs(1, argv_), settings, makeApp([&] { ready = true; }), nullptr));
    ASSERT_TRUE(runUntil([&] { return ready; }));
  }
  void TearDown() override {
    CefShutdown();
    EXPECT_EQ(liveContexts(), 0);
  }

 private:
  char name_[9] = "cef_test";
  char* argv_[2] = {name_, nullptr};
};

[[maybe_unused]] const auto* const kEnvironment =
    testing::AddGlobalTestEnvironment(new FrameworkEnvironment);

}  // namespace
}  // namespace cef_test
