#pragma once

#include <memory>
#include <string>

namespace zantrio {

// Checks the user's access to a file or a folder. Ownership: the caller's. Thread: any.
class IFilePermissionsRetriever {
 public:
  static constexpr int kRead = 1;
  static constexpr int kWrite = 2;

  virtual ~IFilePermissionsRetriever() = default;

  // The sum of kRead and kWrite for `path`, by the operating system's check for the real user;
  // 0 when neither is allowed or the path does not exist.
  virtual int getPermissions(const std::string& path) = 0;
};

// The result of getPermissions by the access check of POSIX, for the platforms.
int permissionsOfRealUser(const std::string& path);

// Null when memory runs out.
std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever();

}  // namespace zantrio
