#include "services/file_permissions_retriever.h"

#include <unistd.h>

namespace zantrio {

int permissionsOfRealUser(const std::string& path) {
  const int read = access(path.c_str(), R_OK) == 0 ? IFilePermissionsRetriever::kRead : 0;
  const int write = access(path.c_str(), W_OK) == 0 ? IFilePermissionsRetriever::kWrite : 0;
  return read + write;
}

}  // namespace zantrio
