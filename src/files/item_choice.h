#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zantrio {

// The access that the user needs to the chosen items.
struct RequiredPermission {
  int permission = 0;  // IFilePermissionsRetriever::kRead or kWrite
  // The text of the alert for an item without it.
  std::function<std::string(const std::string& path)> alertText;
};

// Shows a dialog and appends the URLs of the chosen items; false when the user cancelled.
using ShowChooseDialog = std::function<bool(std::vector<std::string>& chosenUrls)>;

// Repeats the dialog until the user has the permission for all chosen items (true, their URLs in
// `chosenUrls`) or cancels (false). Every item without the permission is reported in an alert.
// Thread: UI; blocks it while the dialog is open.
bool choosePermittedItems(const ShowChooseDialog& show, const RequiredPermission& required,
                          std::vector<std::string>& chosenUrls);

// The same for either kind of choose dialog; false for a null one.
template <class Dialog>
bool choosePermittedItems(const std::unique_ptr<Dialog>& dialog, const std::string& title,
                          const RequiredPermission& required,
                          std::vector<std::string>& chosenUrls) {
  if (!dialog) {
    return false;
  }
  dialog->setTitle(title);
  return choosePermittedItems(
      [&dialog](std::vector<std::string>& chosen) { return dialog->show(chosen); }, required,
      chosenUrls);
}

}  // namespace zantrio
