#include "platform/linux/services/file_permissions_retriever.h"

#include <new>

#include "services/file_permissions_retriever.h"

namespace zantrio {

int CFilePermissionsRetrieverLinux::getPermissions(const std::string& path) {
  return permissionsOfRealUser(path);
}

std::unique_ptr<IFilePermissionsRetriever> createFilePermissionsRetriever() {
  return std::unique_ptr<IFilePermissionsRetriever>(new (std::nothrow)
                                                        CFilePermissionsRetrieverLinux);
}

}  // namespace zantrio
