#include "osr/input/drag_out.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "app/log/logger.h"

namespace client {
namespace {

namespace fs = std::filesystem;

// The page chooses the name, so it may be missing or contain a path.
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

// Creates a file under the first free name and stores its path in `path`. Returns -1 and sets errno
// on failure.
int createFile(const fs::path& folder, const fs::path& name, fs::path& path) {
  constexpr int kMaxNames = 10000;
  constexpr mode_t kReadableByAll = 0644;
  int file = -1;
  for (int number = 1; file < 0 && number <= kMaxNames; ++number) {
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

// Always closes the file. Returns false and sets errno on failure.
bool writeAndClose(int file, const BytesWriteHandler& bytes) {
  if (writeAll(file, bytes)) {
    return close(file) == 0;
  }
  const int error = errno;
  close(file);
  errno = error;
  return false;
}

}  // namespace

DragKinds kindsOf(CefDragData& data) {
  return {data.IsLink(), data.GetFileContents(nullptr) > 0, !data.GetFragmentText().empty()};
}

CefRefPtr<BytesWriteHandler> fileContentsOf(CefDragData& data) {
  const std::size_t size = data.GetFileContents(nullptr);
  if (size == 0) {
    return nullptr;
  }
  const CefRefPtr<BytesWriteHandler> bytes(new BytesWriteHandler(size));
  data.GetFileContents(CefStreamWriter::CreateForHandler(bytes));
  // Fewer bytes mean that memory ran out. A truncated file would pass for a complete one.
  return bytes->size() == static_cast<int64_t>(size) ? bytes : nullptr;
}

cef_drag_operations_mask_t reportedOperation(unsigned int operation) {
  constexpr unsigned int kCopyAndMove = DRAG_OPERATION_COPY | DRAG_OPERATION_MOVE;
  return operation == kCopyAndMove ? DRAG_OPERATION_COPY
                                   : static_cast<cef_drag_operations_mask_t>(operation);
}

std::optional<std::string> writePromisedFile(CefDragData& data, const std::string& folder) {
  const fs::path name = nameOf(data);
  const CefRefPtr<BytesWriteHandler> bytes = fileContentsOf(data);
  if (!bytes) {
    return std::nullopt;
  }
  fs::path path;
  const int file = createFile(folder, name, path);
  if (file >= 0 && writeAndClose(file, *bytes)) {
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
