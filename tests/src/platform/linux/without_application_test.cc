#include <gtest/gtest.h>

#include "files/choose_dialogs.h"
#include "services/alert_dialog.h"
#include "services/clipboard.h"
#include "services/confirm_dialog.h"
#include "services/os_file_explorer.h"
#include "services/platform_init.h"
#include "services/user_notification_handler.h"

namespace zantrio {
namespace {

TEST(WithoutApplication, NothingIsShownCopiedOrOpened) {
  std::vector<std::string> urls;
  createAlertDialog()->show("text");
  EXPECT_TRUE(createConfirmDialog()->ask("text", IConfirmDialog::kCaution));
  EXPECT_FALSE(createFileChooseDialog()->show(urls));
  EXPECT_FALSE(createFolderChooseDialog()->show(urls));
  EXPECT_FALSE(createClipboard()->copyText("text"));
  EXPECT_FALSE(createOsFileExplorer()->openURL("https://example.test/"));
  EXPECT_FALSE(createOsFileExplorer()->openFolder("/"));
  createUserNotificationHandler()->show({"title", "message", ""});
  createPlatformInit()->init();
}

}  // namespace
}  // namespace zantrio
