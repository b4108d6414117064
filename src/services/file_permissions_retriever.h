#pragma once

#include <memory>
#include <string>

namespace zantrio {

// Tells what the user may do with a file or a folder. Ownership: the caller's. Thread: any.
class IFilePermissionsRetriever {
 public:
  static constexpr int kRead = 1;
  static constexpr int kWrite = 2;

  virtual ~IFilePermissionsRetriever() = default;

  // The sum of kRead and kWrite for `path`, by the operating system's check for the real user;
  // 0 when neither is allowed or nothing is there.
  virtual int getPermissions(const std::string& path) = 0;
};

// Null when there was no memory for it.
std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever();

}  // namespace zantrio
