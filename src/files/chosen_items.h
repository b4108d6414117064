#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace zantrio {

// The answers for what the user chose in a dialog: {"files", "directoryName", "summary"}, where
// "directoryName" is the folder's name that all items have in common and "summary" a label for the
// whole; null where there is none. What is chosen is logged. Throws Poco::SyntaxException for what
// is no URL. Thread: UI.

Json::Value describeChosenFiles(const std::vector<std::string>& urls);
Json::Value describeChosenFolder(const std::string& url);

}  // namespace zantrio
