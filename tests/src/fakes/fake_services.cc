#include "src/fakes/fake_services.h"

#include <memory>

#include "files/choose_dialogs.h"
#include "services/address_book.h"
#include "services/alert_dialog.h"
#include "services/clipboard.h"
#include "services/confirm_dialog.h"
#include "services/file_permissions_retriever.h"
#include "services/openable_url.h"
#include "services/os_file_explorer.h"
#include "services/platform_init.h"
#include "services/user_notification_handler.h"

namespace zantrio::test {

FakeServices& FakeServices::instance() {
  static FakeServices fake;
  return fake;
}

void FakeServices::reset() {
  *this = FakeServices();
}

namespace {

FakeServices& fake() {
  return FakeServices::instance();
}

bool record(const std::string& call) {
  fake().calls.push_back(call);
  if (fake().duringCall) {
    fake().duringCall();
  }
  return true;
}

class FakeAlertDialog : public IAlertDialog {
 public:
  void show(const std::string& text) override { record("alert " + text); }
};

class FakeConfirmDialog : public IConfirmDialog {
 public:
  bool ask(const std::string& text, int kind) override {
    record("confirm " + text + " " + std::to_string(kind));
    return fake().confirmAnswer;
  }
};

class FakeClipboard : public IClipboard {
 public:
  bool copyText(const std::string& text) override { return record("copy " + text); }
};

class FakeOsFileExplorer : public IOsFileExplorer {
 public:
  bool openFolder(const std::string& path) override { return record("folder " + path); }
  bool openURL(const std::string& url) override {
    return record("url " + url) && isOpenableUrl(url);
  }
};

class FakeAddressBook : public IAddressBook {
 public:
  void search(const std::string& query, ContactEntries& results) override {
    record("search " + query);
    results.insert(results.end(), fake().contacts.begin(), fake().contacts.end());
  }
};

class FakePlatformInit : public IPlatformInit {
 public:
  void init() override { record("init"); }
};

class FakeUserNotificationHandler : public IUserNotificationHandler {
 public:
  void show(const UserNotification& notification) override {
    record("notify " + notification.title + "|" + notification.message + "|" + notification.url);
  }
};

template <class Interface>
class FakeChooseDialog : public Interface, public CFsItemChooseDialogBase {
 public:
  explicit FakeChooseDialog(std::string kind) : kind_(std::move(kind)) { ++fake().openDialogs; }
  ~FakeChooseDialog() override { --fake().openDialogs; }

  bool show(std::vector<std::string>& chosenUrls) override {
    record(kind_ + ": " + title());
    if (fake().choices.empty()) {
      return false;
    }
    const auto& choice = fake().choices.front();
    chosenUrls.insert(chosenUrls.end(), choice.begin(), choice.end());
    fake().choices.pop_front();
    return true;
  }

 private:
  const std::string kind_;
};

class FakeFilePermissionsRetriever : public IFilePermissionsRetriever {
 public:
  int getPermissions(const std::string& path) override {
    const auto known = fake().permissionsOf.find(path);
    return known != fake().permissionsOf.end() ? known->second : fake().permissions;
  }
};

template <class Interface, class Fake, class... Arguments>
std::unique_ptr<Interface> create(Arguments... arguments) {
  return fake().available ? std::make_unique<Fake>(arguments...) : nullptr;
}

}  // namespace
}  // namespace zantrio::test

namespace zantrio {

std::unique_ptr<IAddressBook> createAddressBook() {
  if (!test::fake().hasAddressBook) {
    throw IAddressBook::CAddressBookObtainError();
  }
  return test::create<IAddressBook, test::FakeAddressBook>();
}
std::unique_ptr<IAlertDialog> createAlertDialog() {
  return test::create<IAlertDialog, test::FakeAlertDialog>();
}
std::unique_ptr<IConfirmDialog> createConfirmDialog() {
  return test::create<IConfirmDialog, test::FakeConfirmDialog>();
}
std::unique_ptr<IClipboard> createClipboard() {
  return test::create<IClipboard, test::FakeClipboard>();
}
std::unique_ptr<IOsFileExplorer> createOsFileExplorer() {
  return test::create<IOsFileExplorer, test::FakeOsFileExplorer>();
}
std::unique_ptr<IPlatformInit> createPlatformInit() {
  return test::create<IPlatformInit, test::FakePlatformInit>();
}
std::unique_ptr<IUserNotificationHandler> createUserNotificationHandler() {
  return test::create<IUserNotificationHandler, test::FakeUserNotificationHandler>();
}
std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return test::create<IFolderChooseDialog, test::FakeChooseDialog<IFolderChooseDialog>>("folder");
}
std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever() {
  return test::create<IFilePermissionsRetriever, test::FakeFilePermissionsRetriever>();
}
std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return test::create<IFileChooseDialog, test::FakeChooseDialog<IFileChooseDialog>>("files");
}

}  // namespace zantrio
