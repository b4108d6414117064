#include "transfers/auto_download_directory.h"

#include <exception>
#include <filesystem>

#include "app/log/logger.h"
#include "app/settings/home_folder.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;

bool isDirectory(const fs::path& path) {
  std::error_code unreadable;  // counts as not there
  return fs::is_directory(path, unreadable);
}

void makeDirectory(const fs::path& path) {
  try {
    fs::create_directories(path);
  } catch (const std::exception& exception) {
    logError("getAutoDownloadDirectory", ": Exception: ", exception.what());
  }
}

}  // namespace

bool CAutoDownloadDirectory::find(std::string& directory) const {
  std::string home;
  readHomeFolder(home);
  const fs::path downloads = fs::path(home) / "Downloads";
  if (home.empty() || !isDirectory(downloads)) {
    return false;
  }
  const fs::path own = downloads / "Zantrio";
  if (!isDirectory(own)) {
    makeDirectory(own);
  }
  if (!isDirectory(own)) {
    return false;
  }
  directory = own.string();
  return true;
}

}  // namespace zantrio
