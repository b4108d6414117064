#pragma once

#include <string>
#include <vector>

namespace zantrio {

enum class ItemPanelKind { kFiles, kFolder };

// Runs the system's file dialog modally, as IFileChooseDialog::show tells. It opens in the folder
// where the last one was left, in this run or an earlier one, at first in the home folder.
bool runItemPanel(ItemPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls);

}  // namespace zantrio
