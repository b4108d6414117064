#include "osr/input/promised_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "app/log/logger.h"
#include "osr/input/drag_contents.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// The page chose the name: it must not lead out of the folder, and there may be none.
fs::path nameOf(CefDragData& data) {
  const fs::path name = fs::path(data.GetFileName().ToString()).filename();
  return name.empty() || name == "." || name == ".." ? fs::path("file") : name;
}

// "name.txt", "name 2.txt", …
fs::path counted(const fs::path& name, int number) {
  if (number == 1) {
    return name;
  }
  return name.stem().string() + " " + std::to_string(number) + name.extension().string();
}

// Makes a file under the first name that is free, which `path` then has. -1, with errno set, when
// it cannot be made.
int makeFile(const fs::path& folder, const fs::path& name, fs::path& path) {
  constexpr int kMostNames = 10000;
  constexpr mode_t kReadableByAll = 0644;
  int file = -1;
  for (int number = 1; file < 0 && number <= kMostNames; ++number) {
    path = folder / counted(name, number);
    file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kReadableByAll);
    if (file < 0 && errno != EEXIST) {
      break;
    }
  }
  return file;
}

bool writeAll(int file, const BytesWriteHandler& bytes) {
  const auto* data = static_cast<const char*>(bytes.data());
  auto left = static_cast<std::size_t>(bytes.size());
  while (left > 0) {
    const ssize_t written = write(file, data, left);
    if (written < 0 && errno != EINTR) {
      return false;
    }
    if (written > 0) {
      data += written;
      left -= static_cast<std::size_t>(written);
    }
  }
  return true;
}

// Closes the file in any case. False with errno set.
bool fill(int file, const BytesWriteHandler& bytes) {
  if (writeAll(file, bytes)) {
    return close(file) == 0;
  }
  const int error = errno;
  close(file);
  errno = error;
  return false;
}

}  // namespace

std::optional<std::string> writePromisedFile(CefDragData& data, const std::string& folder) {
  const fs::path name = nameOf(data);
  const CefRefPtr<BytesWriteHandler> bytes = fileContentsOf(data);
  if (!bytes) {
    return std::nullopt;
  }
  fs::path path;
  const int file = makeFile(folder, name, path);
  if (file >= 0 && fill(file, *bytes)) {
    return path.filename().string();
  }
  const int error = errno;
  if (file >= 0) {
    unlink(path.c_str());
  }
  zantrio::logError("The dragged file ", path.string(),
                    " cannot be written: ", std::generic_category().message(error),
                    "; it is left out.");
  return std::nullopt;
}

}  // namespace client
