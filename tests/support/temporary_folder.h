#pragma once

#include <cstdint>
#include <string>

namespace zantrio::test {

// A temporary folder, removed with its contents by the destructor.
class TemporaryFolder {
 public:
  // kMemory, where the system has it, for folders with very many files.
  enum class Place { kDisk, kMemory };

  explicit TemporaryFolder(Place place = Place::kDisk);
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::string& path() const { return path_; }
  // All of these take a name relative to the folder, make the folders that lead to it, and return
  // its absolute path.
  std::string makeFolder(const std::string& name) const;
  std::string makeFile(const std::string& name, const std::string& content = "") const;
  std::string makeLink(const std::string& name, const std::string& target) const;

 private:
  std::string path_;
};

// Both times of a file, in nanoseconds since the epoch.
void setModified(const std::string& path, std::int64_t nanoseconds);

}  // namespace zantrio::test
