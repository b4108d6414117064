#import <AppKit/AppKit.h>
#import <HockeySDK/HockeySDK.h>

#include <cmath>
#include <cstdlib>

#include "platform/mac/services/crash_manager_delegate.h"
#include "services/clipboard.h"
#include "services/os_file_explorer.h"
#include "services/platform_init.h"
#include "services/user_notification_handler.h"
#include "src/platform/mac/fakes/appkit_fake.h"
#include "src/platform/mac/fakes/system_fake.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/temporary_folder.h"

using namespace zantrio::mac_test;

namespace {

// The results of the shared workspace, the crash-reporting SDK and the notification centre.
struct ServicesRecord {
  bool workspaceRaises = false;
  bool workspaceOpens = true;
  std::string sdkRaisesIn;                          // a message that raises an exception
  id<BITCrashManagerDelegate> crashDelegate = nil;  // not owned, as in the SDK
  bool hasCenter = true;
  int notificationsAlive = 0;
  std::string notification;  // the parts of the one that is being made
};

ServicesRecord record;

void sdkCalled(const std::string& message, const std::string& argument = "") {
  recordCall(message + argument);
  if (record.sdkRaisesIn == message) {
    @throw [NSException exceptionWithName:@"CrashSdk"
                                   reason:@"refused"
                                 userInfo:@{@"why" : @"test"}];
  }
}

}  // namespace

@interface RecordingWorkspace : NSObject
@end

@implementation RecordingWorkspace
+ (id)sharedWorkspace {
  return [[[RecordingWorkspace alloc] init] autorelease];
}

- (BOOL)openURL:(NSURL*)url {
  recordCall("show " + textOf([url absoluteString]));
  if (record.workspaceRaises) {
    [NSException raise:NSGenericException format:@"workspace"];
  }
  return record.workspaceOpens;
}
@end

@implementation BITCrashManager
@dynamic autoSubmitCrashReport, delegate;

- (void)setAutoSubmitCrashReport:(BOOL)automatically {
  sdkCalled("submit", automatically ? " automatically" : " never");
}

- (void)setDelegate:(id<BITCrashManagerDelegate>)delegate {
  sdkCalled("delegate");
  record.crashDelegate = delegate;
}
@end

@implementation BITHockeyManager
+ (BITHockeyManager*)sharedHockeyManager {
  static BITHockeyManager* const manager = [[BITHockeyManager alloc] init];
  return manager;
}

- (BITCrashManager*)crashManager {
  static BITCrashManager* const crashManager = [[BITCrashManager alloc] init];
  return crashManager;
}

- (void)configureWithIdentifier:(NSString*)appIdentifier {
  sdkCalled("configure ", textOf(appIdentifier));
}

- (void)startManager {
  sdkCalled("start");
}
@end

// Implements the recorded part of the classes that the system's headers declare.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wincomplete-implementation"

@implementation NSUserNotification
@dynamic title, subtitle, informativeText, actionButtonTitle, userInfo, deliveryDate,
    deliveryTimeZone, deliveryRepeatInterval, actualDeliveryDate, presented, remote, soundName,
    hasActionButton, activationType, otherButtonTitle, identifier, contentImage, hasReplyButton,
    responsePlaceholder, response;

- (id)init {
  ++record.notificationsAlive;
  record.notification.clear();
  return [super init];
}

- (void)dealloc {
  --record.notificationsAlive;
  [super dealloc];
}

- (void)setTitle:(NSString*)title {
  record.notification += " title '" + textOf(title) + "'";
}

- (void)setInformativeText:(NSString*)text {
  record.notification += " text '" + textOf(text) + "'";
}

- (void)setDeliveryDate:(NSDate*)date {
  record.notification += std::fabs([date timeIntervalSinceNow]) < 60 ? " now" : " later";
}

- (void)setUserInfo:(NSDictionary*)information {
  record.notification += " url '" + textOf([information objectForKey:@"url"]) + "'";
}

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  return [self retain];
}
@end

@implementation NSUserNotificationCenter
@dynamic delegate, scheduledNotifications, deliveredNotifications;

+ (NSUserNotificationCenter*)defaultUserNotificationCenter {
  static NSUserNotificationCenter* const center = [[NSUserNotificationCenter alloc] init];
  return record.hasCenter ? center : nil;
}

- (void)scheduleNotification:(NSUserNotification*)notification {
  (void)notification;
  recordCall("notify" + record.notification);
}
@end

#pragma clang diagnostic pop

namespace zantrio::mac_test {
namespace {

using Calls = std::vector<std::string>;

// With a home folder of its own.
class ServicesMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    record = {};
    home_ = std::getenv("HOME");
    setenv("HOME", folder_.path().c_str(), 1);
  }
  void TearDown() override {
    setenv("HOME", home_.c_str(), 1);
    MacTest::TearDown();
    EXPECT_EQ(record.notificationsAlive, 0);
  }

  static Calls taken() { return std::exchange(calls(), {}); }

  const ApplicationInPlace application_;
  const ClassMethodSwap workspaceInPlace_ {
    [NSWorkspace class], [RecordingWorkspace class], @selector(sharedWorkspace)
  };
  const test::TemporaryFolder folder_;
  std::string home_;
};

TEST_F(ServicesMac, CopyTheBytesUnchangedAsTheOnlyItem) {
  const std::string text("Zo\xC3\xAB \xFF\0 end", 11);
  EXPECT_TRUE(createClipboard()->copyText(text));
  EXPECT_EQ(taken(), (Calls{"use com.apple.pasteboard.clipboard", "clear", "synchronize",
                            "put item 1 of public.utf8-plain-text flags 0: " + text}));
  fakeSystem().pasteboardPut = -25130;
  EXPECT_FALSE(createClipboard()->copyText("text"));
  taken();
  fakeSystem().pasteboardCreation = -25130;
  EXPECT_FALSE(createClipboard()->copyText("text"));
  EXPECT_EQ(taken(), Calls{"use com.apple.pasteboard.clipboard"});
}

TEST_F(ServicesMac, OpenFoldersAndAsciiUrlsWhateverTheSystemAnswers) {
  const auto explorer = createOsFileExplorer();
  EXPECT_TRUE(explorer->openFolder("/nowhere/My Fil\xC3\xABs"));
  record.workspaceOpens = false;
  EXPECT_TRUE(explorer->openFolder("/nowhere"));
  EXPECT_TRUE(explorer->openURL("https://example.org/a%20b?c=d#e"));
  fakeSystem().launchResult = -10814;
  EXPECT_TRUE(explorer->openURL("unknown:thing"));
  EXPECT_TRUE(explorer->openURL(""));
  EXPECT_TRUE(explorer->openURL("https://example.org/Zo\xC3\xAB"));
  EXPECT_EQ(taken(), (Calls{"show file:///nowhere/My%20Fil%C3%ABs/", "show file:///nowhere/",
                            "open https://example.org/a%20b?c=d#e", "open unknown:thing",
                            "open (null)", "open (null)"}));
  record.workspaceRaises = true;
  EXPECT_FALSE(explorer->openFolder("/nowhere"));
  fakeSystem().launchServicesRaise = true;
  EXPECT_FALSE(explorer->openURL("https://example.org/"));
}

TEST_F(ServicesMac, ScheduleNotificationsInUtf8ForNow) {
  createUserNotificationHandler()->show({"Zo\xC3\xAB", "caf\xC3\xA9", "https://\xC3\xBC/"});
  createUserNotificationHandler()->show({});
  record.hasCenter = false;
  createUserNotificationHandler()->show({"title", "message", "url"});
  EXPECT_EQ(taken(), (Calls{"notify title 'Zo\u00EB' text 'caf\u00E9' now url 'https://\u00FC/'",
                            "notify title '' text '' now url ''"}));
}

TEST_F(ServicesMac, StartTheCrashReporterAndThenOfferTheMenuOfServices) {
  const Calls services = {"log: Initializing Service Provider", "NSUpdateDynamicServices"};
  createPlatformInit()->init();
  Calls expected = {"log: Initializing BITHockeyManager...",
                    "configure 5f0c2e9a7b3d41e68a2c9d7f0b4e1a36",
                    "submit automatically",
                    "delegate",
                    "start",
                    "log: Done initializing BITHockeyManager..."};
  expected.insert(expected.end(), services.begin(), services.end());
  EXPECT_EQ(taken(), expected);
  ASSERT_TRUE([record.crashDelegate isKindOfClass:[CrashManagerDelegate class]]);
  EXPECT_EQ([record.crashDelegate retainCount], 1U) << "the SDK does not retain its delegate";
  EXPECT_EQ([NSApp servicesProvider], (id)[NSApp delegate]);

  record.sdkRaisesIn = "start";
  createPlatformInit()->init();
  const std::string exception = *(calls().end() - 3);
  EXPECT_TRUE(exception.starts_with("log: Exception occurred while attempting to init the crash "
                                    "reporter: "))
      << exception;
  EXPECT_NE(exception.find("refused"), std::string::npos);
  EXPECT_NE(exception.find("why = test"), std::string::npos);
  EXPECT_EQ(Calls(calls().end() - 2, calls().end()), services);
}

TEST_F(ServicesMac, AttachTheLogTailsOfTheApplicationsFolderToACrashReport) {
  CrashManagerDelegate* const delegate = [[[CrashManagerDelegate alloc] init] autorelease];
  const std::string folder = "Library/Application Support/Zantrio CEF/";
  const std::string path = folder_.path() + "/" + folder;
  EXPECT_EQ(textOf([delegate getAppLogPath]), path + "zt_app.log");
  EXPECT_EQ(textOf([delegate getZtTransfersLogPath]), path + "zt_transfers.log");
  EXPECT_EQ(textOf([delegate getZtTransfersSecondaryLogPath]), path + "zt_transfers.log.0");
  EXPECT_EQ(textOf([delegate getBrowserLogPath]), path + "cef_browser.log");
  folder_.makeFile(folder + "zt_app.log", "Zo\xC3\xAB started\n");
  const std::string log = textOf([delegate applicationLogForCrashManager:nil]);
  EXPECT_NE(log.find(" zt_app.log ---------------------------\n\nZo\xC3\xAB started\n"),
            std::string::npos)
      << log;
  setenv("HOME", "", 1);
  EXPECT_EQ(textOf([delegate getAppLogPath]), "");

  NSData* const data = [NSData dataWithBytes:"1\xC3\xAB"
                                             "345"
                                      length:6];
  EXPECT_EQ(textOf([delegate logDataToString:data dataLengthMax:4]), "345")
      << "half a character was kept";
}

}  // namespace
}  // namespace zantrio::mac_test
