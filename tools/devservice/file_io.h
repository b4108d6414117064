#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace zantrio::devservice {

// An open file, closed by destruction. Every failure throws std::system_error whose text names the
// file.
class CFile {
 public:
  static CFile create(const std::filesystem::path& path);  // must not exist
  static CFile openForReading(const std::filesystem::path& path);
  static CFile openForAppending(const std::filesystem::path& path);

  CFile(CFile&& other) noexcept;
  CFile& operator=(CFile&& other) noexcept;
  ~CFile();

  void write(std::span<const char> data);
  // Reads up to the buffer's size at an offset; returns the number of bytes, 0 at the end.
  std::size_t readAt(std::span<char> buffer, std::uint64_t offset) const;
  std::uint64_t size() const;
  // Reports delayed errors, for example a full disk.
  void close();

 private:
  CFile(int descriptor, std::filesystem::path path);

  int descriptor_ = -1;
  std::filesystem::path path_;
};

// The file's text; empty if it does not exist.
std::string readText(const std::filesystem::path& path);
// Replaces the file's text in one step.
void replaceText(const std::filesystem::path& path, const std::string& text);

}  // namespace zantrio::devservice
