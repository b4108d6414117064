#pragma once

#include "services/file_permissions_retriever.h"

namespace zantrio {

class CFilePermissionsRetrieverMac : public IFilePermissionsRetriever {
 public:
  int getPermissions(const std::string& path) override;
};

}  // namespace zantrio
