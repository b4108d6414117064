#pragma once

#include <json/value.h>

#include <string>

namespace zantrio {

// Decides where a new download group goes, and makes the folder: below the automatic download
// directory if "autoDownload" of `parameters` is true, else, or where that fails, below a folder
// that the user chooses; there in the folder that "summary" names (safeFolderName).
//
// True with the folder's absolute path in `path`. False, told in the log, when the user chose none
// or the folder cannot be made. Throws Json::LogicError when "summary" cannot be a text.
// Thread: UI; blocks it while the dialog is open.
bool resolveDownloadPath(const Json::Value& parameters, std::string& path);

}  // namespace zantrio
