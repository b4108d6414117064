#pragma once

#include <string>
#include <vector>

namespace zantrio {

enum class OpenPanelKind { kFiles, kFolder };

// Runs the system's open panel modally, as IFileChooseDialog::show tells. The title's bytes are
// taken in the system's default narrow encoding; the panel opens where it was last left.
bool runOpenPanel(OpenPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls);

}  // namespace zantrio
