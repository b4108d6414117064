#include "platform/mac/dialogs/message_dialogs.h"

#include "src/platform/mac/fakes/calls.h"
#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/mac_fixture.h"

namespace zantrio::mac_test {
namespace {

using MessageDialogsMac = MacTest;

// The same bytes are "Zoë" in UTF-8.
constexpr const char* kText = "Zo\xC3\xAB";
constexpr const char* kTextInMacRoman = "Zo\u221A\u00B4";

TEST_F(MessageDialogsMac, ShowAlertsAsSystemNoticesWithTheTextInMacRoman) {
  createAlertDialog()->show(kText);
  const CoreFoundationRecord& notice = coreFoundation();
  EXPECT_EQ(calls(), std::vector<std::string>{"CFUserNotificationDisplayNotice"});
  EXPECT_EQ(notice.timeout, 0);
  EXPECT_EQ(notice.flags, kCFUserNotificationPlainAlertLevel);
  EXPECT_EQ(notice.header, "");
  EXPECT_EQ(notice.message, kTextInMacRoman);
  EXPECT_EQ(notice.defaultButton, "(null)") << "the system's own button";
  EXPECT_FALSE(notice.hasOtherParts);
}

TEST_F(MessageDialogsMac, AskQuestionsInMacRomanWithTheButtonsYesAndNo) {
  EXPECT_TRUE(createConfirmDialog()->ask(kText, IConfirmDialog::kCaution));
  const CoreFoundationRecord& question = coreFoundation();
  EXPECT_EQ(calls(), std::vector<std::string>{"CFUserNotificationDisplayAlert"});
  EXPECT_EQ(question.timeout, 0);
  EXPECT_EQ(question.header, "");
  EXPECT_EQ(question.message, kTextInMacRoman);
  EXPECT_EQ(question.defaultButton, "Yes");
  EXPECT_EQ(question.alternateButton, "No");
  EXPECT_FALSE(question.hasOtherParts);
}

TEST_F(MessageDialogsMac, MapKindsToAlertLevelsAndOnlyTheDefaultButtonToYes) {
  const std::pair<int, CFOptionFlags> levels[] = {{0, kCFUserNotificationCautionAlertLevel},
                                                  {1, kCFUserNotificationStopAlertLevel},
                                                  {2, kCFUserNotificationPlainAlertLevel},
                                                  {7, kCFUserNotificationStopAlertLevel},
                                                  {-1, kCFUserNotificationStopAlertLevel}};
  for (const auto& [kind, level] : levels) {
    createConfirmDialog()->ask("?", kind);
    EXPECT_EQ(coreFoundation().flags, level) << "kind " << kind;
  }
  for (const CFOptionFlags response : {0, 1, 2, 3}) {
    coreFoundation().response = response;
    EXPECT_EQ(createConfirmDialog()->ask("?", 0), response == kCFUserNotificationDefaultResponse);
  }
  coreFoundation().writesResponse = false;
  coreFoundation().displayResult = -1;
  EXPECT_TRUE(createConfirmDialog()->ask("?", 0)) << "a question that cannot be shown";
}

}  // namespace
}  // namespace zantrio::mac_test
