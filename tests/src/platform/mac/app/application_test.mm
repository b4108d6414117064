// The real application object, delegate and menu on a display of their own.
#include "platform/mac/app/application.h"

#include "app/main_mac.h"
#include "platform/mac/app/application_delegate.h"
#include "platform/mac/app/zantrio_application.h"
#include "src/platform/mac/fakes/client_fake.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/server_process.h"

namespace zantrio::mac_test {
namespace {

using Calls = std::vector<std::string>;

// Whether the last command was called while an event was being sent.
bool calledDuringAnEvent = false;

class EventCheckingCommands : public RecordingCommands {
 public:
  void newShare() override {
    calledDuringAnEvent = [(ZantrioApplication*)NSApp isHandlingSendEvent];
    RecordingCommands::newShare();
  }
};

class ApplicationMac : public MacTest {
 protected:
  ApplicationMac() { client() = {}; }

  static NSMenu* menu(NSString* title) { return [[[NSApp mainMenu] itemWithTitle:title] submenu]; }

  static void press(NSString* key) {
    [NSApp sendEvent:[NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:NSCommandKeyMask
                                           timestamp:0
                                        windowNumber:0
                                             context:nil
                                          characters:key
                         charactersIgnoringModifiers:key
                                           isARepeat:NO
                                             keyCode:0]];
  }
};

TEST_F(ApplicationMac, RunsCommandsAndReportsThatAnEventIsBeingSent) {
  {
    const CApplicationMac application(std::make_unique<EventCheckingCommands>());
    EXPECT_TRUE([[NSApp delegate] isKindOfClass:[ZantrioApplicationDelegate class]]);
    [menu(@"File") performActionForItemAtIndex:0];
    press(@"N");
    [NSApp terminate:nil];  // closes the browser, and not the process
    EXPECT_EQ(calls(), (Calls{"new message", "new share", "quit"}));
    EXPECT_TRUE(calledDuringAnEvent);
    EXPECT_FALSE([(ZantrioApplication*)NSApp isHandlingSendEvent]);
  }
  EXPECT_EQ([NSApp delegate], nil);
}

class MainMac : public ApplicationMac {
 protected:
  char name_[8] = "Zantrio";
  char file_[3] = "/a";
  char* arguments_[3] = {name_, file_, nullptr};
};

TEST_F(MainMac, LoadsTheFrameworkAroundTheBrowserProcess) {
  client().exitCode = 3;
  EXPECT_EQ(runApplication(2, arguments_), 3);
  EXPECT_EQ(calls(), (Calls{"LoadInMain", "browser process", "unload framework"}));
  EXPECT_EQ(client().arguments, (Calls{"Zantrio", "/a"}));

  client().failure = "no settings";
  EXPECT_EQ(runApplication(2, arguments_), 1);
  EXPECT_EQ(calls().back(), "unload framework");
  calls().clear();
  client().loadsFramework = false;
  EXPECT_EQ(runApplication(2, arguments_), 1);
  EXPECT_EQ(calls(),
            (Calls{"LoadInMain",
                   "log: Zantrio cannot run: the browser framework in the bundle cannot be loaded",
                   "unload framework"}));
}

TEST_F(MainMac, TheHelperRunsOnlyInTheSandboxAndWithTheFramework) {
  client().exitCode = 4;
  EXPECT_EQ(runHelper(2, arguments_), 4);
  EXPECT_EQ(calls(), (Calls{"enter sandbox 2 Zantrio", "LoadInHelper", "sub-process",
                            "unload framework", "leave sandbox"}));
  calls().clear();
  client().loadsFramework = false;
  EXPECT_EQ(runHelper(2, arguments_), 1);
  EXPECT_EQ(calls()[1], "LoadInHelper");
  EXPECT_EQ(calls()[3], "unload framework");
  calls().clear();
  client().entersSandbox = false;
  EXPECT_EQ(runHelper(2, arguments_), 1);
  EXPECT_EQ(calls(), (Calls{"enter sandbox 2 Zantrio",
                            "log: Zantrio Helper cannot run: the sandbox cannot be entered",
                            "leave sandbox"}));
}

}  // namespace
}  // namespace zantrio::mac_test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) {
    return RUN_ALL_TESTS();
  }
  const zantrio::test::VirtualDisplay display;
  @autoreleasepool {
    // GNUstep logs the display's properties when the first application is created.
    const zantrio::CApplicationMac first(std::make_unique<zantrio::mac_test::RecordingCommands>());
  }
  @autoreleasepool {
    return RUN_ALL_TESTS();
  }
}
