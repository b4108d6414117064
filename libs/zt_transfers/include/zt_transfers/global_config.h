#pragma once

#include <mutex>
#include <string>

#include "zt_transfers/export.h"

namespace zt_transfers {

// Process-wide settings of the library, to be set before the first manager is started.
// Thread: any. Lives to the end of the process.
class ZT_TRANSFERS_EXPORT CZtTransfersGlobalConfig {
 public:
  static CZtTransfersGlobalConfig* getInstance();

  CZtTransfersGlobalConfig(const CZtTransfersGlobalConfig&) = delete;
  CZtTransfersGlobalConfig& operator=(const CZtTransfersGlobalConfig&) = delete;

  // The service's REST end point, an absolute URL without a slash at its end.
  void setRestEndPointUrl(const std::string& url);
  void setUserAgent(const std::string& userAgent);
  // Folder of the library's log and state. Each wide character carries one byte of the path.
  void setAppFilesPath(const std::wstring& path);

  std::string restEndPointUrl() const;
  std::string userAgent() const;
  std::string appFilesPath() const;  // in bytes again

 private:
  CZtTransfersGlobalConfig() = default;

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::string restEndPointUrl_;
  std::string userAgent_;
  std::string appFilesPath_;
};

}  // namespace zt_transfers
