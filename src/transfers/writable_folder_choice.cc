#include "transfers/writable_folder_choice.h"

#include <vector>

#include "files/file_url.h"
#include "files/folder_choose_dialog.h"
#include "services/alert_dialog.h"
#include "services/file_permissions_retriever.h"

namespace zantrio {
namespace {

bool showDialog(IFolderChooseDialog& dialog, std::string& folder) {
  std::vector<std::string> urls;
  if (!dialog.show(urls) || urls.empty()) {
    return false;
  }
  fileUrlToPath(urls.front(), folder);
  return true;
}

void tellUnwritable(const std::string& folder) {
  if (const auto alert = createAlertDialog()) {
    alert->show("Zantrio does not have permissions to write to folder " + folder +
                ". Please select another folder.");
  }
}

}  // namespace

bool CWritableFolderChoice::choose(std::string& folder) const {
  const auto dialog = createFolderChooseDialog();
  if (!dialog) {
    return false;
  }
  dialog->setTitle("Choose a folder");
  const auto permissions = createFilePermissionsRetriever();
  if (!permissions) {
    return false;
  }
  std::string chosen;
  while (showDialog(*dialog, chosen)) {
    if ((permissions->getPermissions(chosen) & IFilePermissionsRetriever::kWrite) != 0) {
      folder = chosen;
      return true;
    }
    tellUnwritable(chosen);
  }
  return false;
}

}  // namespace zantrio
