#pragma once

#include <json/value.h>

#include <string>

namespace zantrio {

// Chooses the folder for a new download group and creates it. With "autoDownload" true in
// `parameters` its parent is "Downloads/Zantrio" in the home folder; otherwise, or when there is
// no "Downloads" folder, its parent is a folder that the user chooses. "summary" names the folder
// (see safeFolderName).
//
// True with the folder's absolute path in `path`. False, logged, when the user chose none or the
// folder cannot be created. Throws Json::LogicError when "summary" cannot be converted to a text.
// Thread: UI; blocks it while the dialog is open.
bool resolveDownloadPath(const Json::Value& parameters, std::string& path);

}  // namespace zantrio
