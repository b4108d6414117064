#include "transfers/download_path.h"

#include <exception>
#include <filesystem>

#include "app/log/logger.h"
#include "transfers/auto_download_directory.h"
#include "transfers/safe_folder_name.h"
#include "transfers/writable_folder_choice.h"

namespace zantrio {
namespace {

constexpr const char* kLogPrefix = "QueryHandlerDownloadManager: ";

bool wantsAutoDownload(const Json::Value& parameters) {
  const Json::Value flag = parameters.get("autoDownload", Json::Value());
  return flag.isBool() && flag.asBool();
}

bool findDirectory(const Json::Value& parameters, std::string& directory) {
  if (wantsAutoDownload(parameters)) {
    if (CAutoDownloadDirectory().find(directory)) {
      return true;
    }
    logError(kLogPrefix, "auto download flag is set, but failed to generate auto download dir!");
  }
  if (CWritableFolderChoice().choose(directory)) {
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
  return name.empty() ? directory : (std::filesystem::path(directory) / name).string();
}

bool makeFolder(const std::string& path) {
  try {
    std::filesystem::create_directories(path);
    return true;
  } catch (const std::exception& exception) {
    logError(kLogPrefix, "the folder for the download cannot be made: ", exception.what());
    return false;
  }
}

}  // namespace

bool resolveDownloadPath(const Json::Value& parameters, std::string& path) {
  const std::string summary = parameters.get("summary", Json::Value()).asString();
  std::string directory;
  if (!findDirectory(parameters, directory)) {
    return false;
  }
  path = join(directory, summary);
  return makeFolder(path);
}

}  // namespace zantrio
