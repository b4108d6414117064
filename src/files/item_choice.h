#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zantrio {

// Shows a dialog and puts the chosen items' URLs into its argument; false when it was cancelled.
using ShowChooseDialog = std::function<bool(std::vector<std::string>& chosenUrls)>;

// Lets the user choose items that can be read: each one that cannot is told in an alert, and the
// dialog is shown again, until all can be read (true, their URLs in `chosenUrls`) or the user
// cancels (false). Thread: UI; blocks it while the dialog is open.
bool chooseReadableItems(const ShowChooseDialog& show, std::vector<std::string>& chosenUrls);

}  // namespace zantrio
