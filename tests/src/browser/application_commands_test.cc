#include "browser/application_commands.h"

#include <gtest/gtest.h>

#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

class ApplicationCommands : public test::ZtCefHandlerTest {
 protected:
  CApplicationCommands commands_;
};

TEST_F(ApplicationCommands, MovesTheWebApplicationToItsRoutes) {
  const auto browser = openBrowser();
  commands_.newMessage();
  commands_.newShare();
  const auto& scripts = browser->frame->scripts;
  ASSERT_EQ(scripts.size(), 2U);
  EXPECT_EQ(scripts[0].code, "Backbone.history.navigate('/message/new', { trigger: true });");
  EXPECT_EQ(scripts[1].code, "Backbone.history.navigate('/share/new', { trigger: true });");
  EXPECT_EQ(scripts[0].url, browser->frame->url);
  EXPECT_EQ(scripts[0].line, 0);
}

TEST_F(ApplicationCommands, KeepsFilesUntilTheWebApplicationIsReady) {
  CInitialFilesContainer& container = CInitialFilesContainer::instance();
  container.set({"/a"}, true, false);
  commands_.openFiles({"/b"});
  client = nullptr;
  commands_.openFiles({"/c", "/d"});
  EXPECT_EQ(container.files(), (std::vector<std::string>{"/a", "/b", "/c", "/d"}));
  container.set({}, true, false);
}

TEST_F(ApplicationCommands, QuittingClosesTheBrowsersOrEndsTheMessageLoop) {
  commands_.quit();
  EXPECT_EQ(framework.quitCalls(), 1);
  const auto browser = openBrowser();
  commands_.quit();
  EXPECT_EQ(browser->host->closeCalls, std::vector<bool>{false});
  EXPECT_EQ(framework.quitCalls(), 1);
}

TEST_F(ApplicationCommands, WithoutAClientQuittingEndsTheMessageLoop) {
  client = nullptr;
  commands_.quit();
  EXPECT_EQ(framework.quitCalls(), 1);
  commands_.newMessage();
  commands_.newShare();
}

}  // namespace
}  // namespace zantrio
