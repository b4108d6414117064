#include "app/data_folder.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace zantrio {
namespace {

namespace fs = std::filesystem;

void makePrivate(const fs::path& path, fs::file_type type) {
  constexpr auto kFile = fs::perms::owner_read | fs::perms::owner_write;
  const bool isFolder = type == fs::file_type::directory;
  if (isFolder || type == fs::file_type::regular) {
    std::error_code impossible;
    fs::permissions(path, isFolder ? fs::perms::owner_all : kFile, impossible);
  }
}

}  // namespace

std::error_code prepareDataFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    return error;
  }
  makePrivate(folder, fs::file_type::directory);
  std::error_code unreadable;
  for (fs::directory_iterator entry(folder, unreadable), end; !unreadable && entry != end;
       entry.increment(unreadable)) {
    makePrivate(entry->path(), entry->symlink_status(unreadable).type());
  }
  if (::access(folder.c_str(), W_OK | X_OK) != 0) {
    error.assign(errno, std::generic_category());
  }
  return error;
}

}  // namespace zantrio
