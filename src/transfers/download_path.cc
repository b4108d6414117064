#include "transfers/download_path.h"

#include <exception>
#include <filesystem>
#include <vector>

#include "app/log/logger.h"
#include "app/settings/home_folder.h"
#include "files/choose_dialogs.h"
#include "files/file_url.h"
#include "files/item_choice.h"
#include "services/file_permissions_retriever.h"
#include "transfers/safe_folder_name.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLogPrefix = "QueryHandlerDownloadManager: ";

bool isDirectory(const fs::path& path) {
  std::error_code unreadable;  // counts as missing
  return fs::is_directory(path, unreadable);
}

// Creates "Zantrio" where it is missing, but never "Downloads".
bool findAutoDownloadDirectory(std::string& directory) {
  std::string home;
  readHomeFolder(home);
  const fs::path downloads = fs::path(home) / "Downloads";
  if (home.empty() || !isDirectory(downloads)) {
    return false;
  }
  const fs::path own = downloads / "Zantrio";
  try {
    fs::create_directories(own);
  } catch (const std::exception& exception) {
    logError("getAutoDownloadDirectory", ": Exception: ", exception.what());
  }
  if (!isDirectory(own)) {
    return false;
  }
  directory = own.string();
  return true;
}

std::string unwritableText(const std::string& folder) {
  return "Zantrio does not have permissions to write to folder " + folder +
         ". Please select another folder.";
}

bool askForDirectory(std::string& directory) {
  std::vector<std::string> urls;
  const bool chosen =
      choosePermittedItems(createFolderChooseDialog(), "Choose a folder",
                           {IFilePermissionsRetriever::kWrite, unwritableText}, urls);
  if (!chosen || urls.empty()) {
    return false;
  }
  fileUrlToPath(urls.front(), directory);
  return true;
}

bool wantsAutoDownload(const Json::Value& parameters) {
  const Json::Value flag = parameters.get("autoDownload", Json::Value());
  return flag.isBool() && flag.asBool();
}

bool findDirectory(const Json::Value& parameters, std::string& directory) {
  if (wantsAutoDownload(parameters)) {
    if (findAutoDownloadDirectory(directory)) {
      return true;
    }
    logError(kLogPrefix, "auto download flag is set, but failed to generate auto download dir!");
  }
  if (askForDirectory(directory)) {
    return true;
  }
  logError(kLogPrefix, "user has not selected a directory for download!");
  return false;
}

std::string join(const std::string& directory, const std::string& summary) {
  const std::string name = safeFolderName(summary);
  if (name != summary) {
    logWarning(kLogPrefix, "the summary is no safe name for a folder, using this one: \"", name,
               "\"");
  }
  return name.empty() ? directory : (fs::path(directory) / name).string();
}

bool makeFolder(const std::string& path) {
  try {
    fs::create_directories(path);
    return true;
  } catch (const std::exception& exception) {
    logError(kLogPrefix, "the folder for the download cannot be made: ", exception.what());
    return false;
  }
}

}  // namespace

bool resolveDownloadPath(const Json::Value& parameters, std::string& path) {
  const Json::Value summary = parameters.get("summary", Json::Value());
  if (!summary.isConvertibleTo(Json::stringValue)) {
    logError(kLogPrefix, "the summary is no text!");
    return false;
  }
  std::string directory;
  if (!findDirectory(parameters, directory)) {
    return false;
  }
  path = join(directory, summary.asString());
  return makeFolder(path);
}

}  // namespace zantrio
