#pragma once

#include <memory>
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
  struct Values;

  CZtTransfersGlobalConfig();
  ~CZtTransfersGlobalConfig();

  const std::unique_ptr<Values> values_;
};

}  // namespace zt_transfers
