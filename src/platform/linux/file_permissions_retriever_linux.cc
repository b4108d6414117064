#include "platform/linux/file_permissions_retriever_linux.h"

#include <unistd.h>

#include <new>

namespace zantrio {

int CFilePermissionsRetrieverLinux::getPermissions(const std::string& path) {
  const int read = access(path.c_str(), R_OK) == 0 ? kRead : 0;
  const int write = access(path.c_str(), W_OK) == 0 ? kWrite : 0;
  return read + write;
}

std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever() {
  return std::unique_ptr<IFilePermissionsRetriever>(new (std::nothrow)
                                                        CFilePermissionsRetrieverLinux);
}

}  // namespace zantrio
