#include "files/item_choice.h"

#include <memory>

#include "files/file_url.h"
#include "services/alert_dialog.h"
#include "services/file_permissions_retriever.h"

namespace zantrio {
namespace {

void showAlert(const std::string& text) {
  if (const std::unique_ptr<IAlertDialog> alert = createAlertDialog()) {
    alert->show(text);
  }
}

// Reports every item without the permission, not only the first.
bool areAllPermitted(IFilePermissionsRetriever& permissions, const RequiredPermission& required,
                     const std::vector<std::string>& urls) {
  bool permitted = true;
  for (const std::string& url : urls) {
    std::string path;
    fileUrlToPath(url, path);
    if ((permissions.getPermissions(path) & required.permission) == 0) {
      showAlert(required.alertText(path));
      permitted = false;
    }
  }
  return permitted;
}

}  // namespace

bool choosePermittedItems(const ShowChooseDialog& show, const RequiredPermission& required,
                          std::vector<std::string>& chosenUrls) {
  const std::unique_ptr<IFilePermissionsRetriever> permissions = createFilePermissionsRetriever();
  if (!permissions) {
    return false;
  }
  do {
    chosenUrls.clear();
    if (!show(chosenUrls)) {
      return false;
    }
  } while (!areAllPermitted(*permissions, required, chosenUrls));
  return true;
}

}  // namespace zantrio
