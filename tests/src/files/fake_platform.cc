#include "src/files/fake_platform.h"

#include "files/file_choose_dialog.h"
#include "files/folder_choose_dialog.h"
#include "files/fs_item_choose_dialog_base.h"
#include "services/alert_dialog.h"
#include "services/file_permissions_retriever.h"

namespace zantrio {
namespace test {
namespace {

template <class Interface>
class FakeDialog : public Interface, public CFsItemChooseDialogBase {
 public:
  explicit FakeDialog(std::string kind) : kind_(std::move(kind)) {
    ++FakePlatform::instance().openDialogs;
  }
  ~FakeDialog() override { --FakePlatform::instance().openDialogs; }

  bool show(std::vector<std::string>& chosenUrls) override {
    FakePlatform& platform = FakePlatform::instance();
    platform.shownDialogs.push_back(kind_ + ": " + title());
    if (platform.answers.empty()) {
      return false;
    }
    const std::vector<std::string> answer = platform.answers.front();
    platform.answers.pop_front();
    chosenUrls.insert(chosenUrls.end(), answer.begin(), answer.end());
    return true;
  }

 private:
  const std::string kind_;
};

template <class Interface>
std::unique_ptr<Interface> makeDialog(const std::string& kind) {
  return FakePlatform::instance().makesDialogs ? std::make_unique<FakeDialog<Interface>>(kind)
                                               : nullptr;
}

class FakeAlert : public IAlertDialog {
 public:
  void show(const std::string& text) override { FakePlatform::instance().alerts.push_back(text); }
};

class FakePermissions : public IFilePermissionsRetriever {
 public:
  int getPermissions(const std::string& path) override {
    return FakePlatform::instance().unreadablePaths.contains(path) ? kWrite : kRead;
  }
};

}  // namespace

FakePlatform& FakePlatform::instance() {
  static FakePlatform platform;
  return platform;
}

}  // namespace test

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return test::makeDialog<IFileChooseDialog>("files");
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return test::makeDialog<IFolderChooseDialog>("folder");
}

std::unique_ptr<IAlertDialog> createAlertDialog() {
  return std::make_unique<test::FakeAlert>();
}

std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever() {
  return std::make_unique<test::FakePermissions>();
}

}  // namespace zantrio
