#include "devservice/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace zantrio::devservice {

namespace {

[[noreturn]] void fail(const std::filesystem::path& path) {
  throw std::system_error(errno, std::generic_category(), path.string());
}

}  // namespace

CFile CFile::create(const std::filesystem::path& path) {
  return CFile(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666), path);
}

CFile CFile::openForReading(const std::filesystem::path& path) {
  return CFile(::open(path.c_str(), O_RDONLY | O_CLOEXEC), path);
}

CFile CFile::openForAppending(const std::filesystem::path& path) {
  return CFile(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666), path);
}

CFile::CFile(int descriptor, std::filesystem::path path)
    : descriptor_(descriptor), path_(std::move(path)) {
  if (descriptor_ < 0) {
    fail(path_);
  }
}

CFile::CFile(CFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}

CFile& CFile::operator=(CFile&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(path_, other.path_);
  return *this;
}

CFile::~CFile() {
  if (descriptor_ >= 0) {
    ::close(descriptor_);
  }
}

void CFile::write(std::span<const char> data) {
  while (!data.empty()) {
    const ssize_t written = ::write(descriptor_, data.data(), data.size());
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      fail(path_);
    }
    data = data.subspan(static_cast<std::size_t>(written));
  }
}

std::size_t CFile::readAt(std::span<char> buffer, std::uint64_t offset) const {
  while (true) {
    const ssize_t count =
        ::pread(descriptor_, buffer.data(), buffer.size(), static_cast<off_t>(offset));
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) {
      fail(path_);
    }
  }
}

std::uint64_t CFile::size() const {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) {
    fail(path_);
  }
  return static_cast<std::uint64_t>(status.st_size);
}

void CFile::close() {
  if (::close(std::exchange(descriptor_, -1)) != 0) {
    fail(path_);
  }
}

std::string readText(const std::filesystem::path& path) {
  if (!std::filesystem::exists(path)) {
    return {};
  }
  const CFile file = CFile::openForReading(path);
  std::string text(file.size(), '\0');
  text.resize(file.readAt(text, 0));
  return text;
}

void replaceText(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::path fresh = path;
  fresh += ".new";
  std::filesystem::remove(fresh);
  CFile file = CFile::create(fresh);
  file.write(text);
  file.close();
  std::filesystem::rename(fresh, path);
}

}  // namespace zantrio::devservice
