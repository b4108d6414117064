#include "browser/application_commands.h"

#include <gtest/gtest.h>

#include "src/browser/zt_cef_handler_fixture.h"

namespace zantrio {
namespace {

class ApplicationCommands : public test::ZtCefHandlerTest {
 protected:
  CApplicationCommands commands_;
};

TEST_F(ApplicationCommands, KeepsFilesUntilTheWebApplicationIsReadyAndDoesWithoutAClient) {
  CInitialFilesContainer& container = CInitialFilesContainer::instance();
  container.set({"/a"}, true, false);
  commands_.openFiles({"/b"});
  client = nullptr;
  commands_.openFiles({"/c", "/d"});
  EXPECT_EQ(container.files(), (std::vector<std::string>{"/a", "/b", "/c", "/d"}));
  container.set({}, true, false);
  commands_.newMessage();
  commands_.newShare();
  commands_.quit();
  EXPECT_EQ(framework.quitCalls(), 1);
}

TEST_F(ApplicationCommands, QuittingClosesTheBrowsersOrEndsTheMessageLoop) {
  commands_.quit();
  EXPECT_EQ(framework.quitCalls(), 1);
  const auto browser = openBrowser();
  commands_.quit();
  EXPECT_EQ(browser->host->closeCalls, std::vector<bool>{false});
  EXPECT_EQ(framework.quitCalls(), 1);
}

}  // namespace
}  // namespace zantrio
