#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace zantrio {

// The responses for the items chosen in a dialog: {"files", "directoryName", "summary"}, where
// "directoryName" is the name of the common parent folder and "summary" a label for the selection;
// null where there is none. The chosen items are logged. Throws Poco::SyntaxException for an
// invalid URL. Thread: UI.

Json::Value describeChosenFiles(const std::vector<std::string>& urls);
Json::Value describeChosenFolder(const std::string& url);

}  // namespace zantrio
