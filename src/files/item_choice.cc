#include "files/item_choice.h"

#include <memory>

#include "files/file_url.h"
#include "services/alert_dialog.h"
#include "services/file_permissions_retriever.h"

namespace zantrio {
namespace {

void tellUnreadable(const std::string& path) {
  if (const std::unique_ptr<IAlertDialog> alert = createAlertDialog()) {
    alert->show("Zantrio does not have read permissions to " + path +
                ". Please select another item.");
  }
}

// Tells of every item that cannot be read, not only of the first.
bool areAllReadable(IFilePermissionsRetriever& permissions, const std::vector<std::string>& urls) {
  bool readable = true;
  for (const std::string& url : urls) {
    std::string path;
    fileUrlToPath(url, path);
    if ((permissions.getPermissions(path) & IFilePermissionsRetriever::kRead) == 0) {
      tellUnreadable(path);
      readable = false;
    }
  }
  return readable;
}

}  // namespace

bool chooseReadableItems(const ShowChooseDialog& show, std::vector<std::string>& chosenUrls) {
  const std::unique_ptr<IFilePermissionsRetriever> permissions = createFilePermissionsRetriever();
  if (!permissions) {
    return false;
  }
  do {
    chosenUrls.clear();
    if (!show(chosenUrls)) {
      return false;
    }
  } while (!areAllReadable(*permissions, chosenUrls));
  return true;
}

}  // namespace zantrio
