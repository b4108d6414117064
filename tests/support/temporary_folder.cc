#include "support/temporary_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace zantrio::test {
namespace fs = std::filesystem;

namespace {

fs::path folderFor(TemporaryFolder::Place place) {
  const fs::path memory = "/dev/shm";
  const bool inMemory = place == TemporaryFolder::Place::kMemory && fs::is_directory(memory);
  return inMemory ? memory : fs::temp_directory_path();
}

}  // namespace

TemporaryFolder::TemporaryFolder(Place place)
    : path_((folderFor(place) / "zantrio-test-XXXXXX").string()) {
  if (mkdtemp(path_.data()) == nullptr) {
    throw std::runtime_error("cannot make a temporary folder");
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::makeFolder(const std::string& name) const {
  const fs::path folder = fs::path(path_) / name;
  fs::create_directories(folder);
  return folder.string();
}

std::string TemporaryFolder::makeFile(const std::string& name, const std::string& content) const {
  const fs::path file = fs::path(path_) / name;
  fs::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
  return file.string();
}

std::string TemporaryFolder::makeLink(const std::string& name, const std::string& target) const {
  const fs::path link = fs::path(path_) / name;
  fs::create_directories(link.parent_path());
  fs::create_symlink(target, link);
  return link.string();
}

void setModified(const std::string& path, std::int64_t nanoseconds) {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  std::int64_t seconds = nanoseconds / kPerSecond;
  std::int64_t rest = nanoseconds % kPerSecond;
  if (rest < 0) {
    --seconds;
    rest += kPerSecond;
  }
  const timespec times[2] = {{seconds, rest}, {seconds, rest}};
  if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) {
    throw std::runtime_error("cannot set the times of " + path);
  }
}

}  // namespace zantrio::test
