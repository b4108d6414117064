#pragma once

#include <filesystem>
#include <string>

namespace zt_transfers::test {

// A folder of its own for a test, removed with all it holds when the test ends.
class CSandbox {
 public:
  explicit CSandbox(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~CSandbox();
  CSandbox(const CSandbox&) = delete;
  CSandbox& operator=(const CSandbox&) = delete;

  const std::filesystem::path& folder() const { return folder_; }
  // Writes a file of this content and gives its path.
  std::filesystem::path file(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path folder_;
};

std::string contentOf(const std::filesystem::path& path);

// `size` bytes in which every part differs from every other.
std::string patternOf(std::size_t size, unsigned seed = 1);

// The file: URL of a path, every byte escaped that is not a plain letter, digit or slash, as the
// library takes it.
std::wstring fileUrl(const std::filesystem::path& path);

std::string md5Of(const std::string& content);

}  // namespace zt_transfers::test
